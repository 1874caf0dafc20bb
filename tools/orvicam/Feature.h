#pragma once
// One feature of an open camera: its value as text and as JSON, and why it does not take one.

#include "OrviCamApi.h"
#include "Print.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

/// Every function throws a Failure that names the feature, the reason and what the feature takes.
class Feature {
  public:
    Feature(CAM_HANDLE camera, CAM_HANDLE node, std::string name);

    const std::string &Name() const { return name_; }
    CAM_NODE_TYPE Type() const { return type_; }
    CAM_NODE_ACCESS_MODE AccessMode() const;
    /// Empty when it has none.
    std::string Unit() const;
    /// Those of an enumeration that can be chosen now.
    std::vector<std::string> Entries() const;
    /// All that is known of it; `value`, `unit` and the like only where it has them.
    Json Describe() const;

    /// Whether it has a value that can be read now.
    bool IsReadable() const;
    /// Whether it has a value that can be set now.
    bool IsWritable() const;
    Json Value() const;
    /// Nothing when it cannot be read; only what a camera that is gone makes of it is a failure.
    std::optional<Json> TryValue() const;
    /// The value as Set() takes it.
    std::string Text() const { return Text(Value()); }
    std::string Text(const Json &value) const;
    /// Takes "5ms" where the unit is us, and names of entries.
    void Set(const std::string &text) const;
    void Execute() const;

  private:
    bool HasValue() const;
    /// The number of "5ms" in the feature's unit; any other text as it is.
    std::string InOwnUnit(const std::string &text) const;
    CAM_API_STATUS TrySet(const std::string &text, const std::string &number) const;
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
