#pragma once
// The library's life in this program, and which cameras are attached.

#include "OrviCamApi.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

/// What is known of an attached camera without opening it.
struct CameraEntry {
    std::uint32_t index = 0;
    std::string serial, userName, manufacturer, model, family, deviceVersion, manufacturerInfo;
    std::uint32_t linkSpeed = 0;
};

/// Which cameras a command works on when it names none.
enum class Default { All, TheOnly };

/// Initialises the library; one at a time.
class Session {
  public:
    /// Looks for the SDK beside the program when ORVICAMSDK is unset; asks for virtual cameras when told how many.
    explicit Session(const std::optional<std::string> &virtualCameras);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    const std::vector<CameraEntry> &Cameras() const { return cameras_; }

    /// The cameras meant by the names (serial number, user name, index or glob), each once, in the order of the names.
    std::vector<CameraEntry> Select(const std::vector<std::string> &names, Default without) const;

  private:
    std::vector<CameraEntry> cameras_;
};

} // namespace Orvi::Tool
