#pragma once
// One feature of an open camera: its value as text and as JSON, and why it does not take one.

#include "OrviCamApi.h"
#include "Print.h"

#include <string>
#include <vector>

namespace Orvi::Tool {

/// Every function throws a Failure that names the feature, the reason and what the feature takes.
class Feature {
  public:
    Feature(CAM_HANDLE camera, CAM_HANDLE node, std::string name);

    const std::string &Name() const { return name_; }
    CAM_NODE_TYPE Type() const { return type_; }

    /// Whether it has a value that can be read now.
    bool IsReadable() const;
    Json Value() const;
    /// The value as Set() takes it.
    std::string Text() const;
    void Set(const std::string &text) const;
    void Execute() const;

  private:
    CAM_API_STATUS TrySet(const std::string &text) const;
    CAM_NODE_ACCESS_MODE AccessMode() const;
    std::string Unit() const;
    std::vector<std::string> Entries() const;
    std::string Takes() const;
    bool Fits(const std::string &text) const;
    void Check(CAM_API_STATUS status, const char *doing) const;
    [[noreturn]] void Refuse(const std::string &why) const;

    CAM_HANDLE camera_;
    CAM_HANDLE node_;
    std::string name_;
    CAM_NODE_TYPE type_ = CAM_NODE_TYPE_BASE;
};

} // namespace Orvi::Tool
