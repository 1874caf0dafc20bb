#pragma once
// What a host sees of a camera's memory when it is not the camera's own map of registers: a front stands between the
// control protocol and the engine, which keeps the map.

#include "vcam/EventQueue.h"
#include "vcam/GenCpServer.h"
#include "vcam/VirtualCamera.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Orvi::Vcam {

class Front : public GenCpMemory {
  public:
    /// The description that the camera carries.
    virtual std::string_view Xml() const = 0;
    /// Called after the engine's own power-up, without its lock.
    virtual void PowerUp() = 0;
    /// Event ids that the description has for kinds of events.
    virtual std::map<EventKind, std::uint16_t> EventIds() const { return {}; }

    /// What the front has given to be kept for the next process, before its first power-up.
    virtual void SetState(const std::string & /*state*/) {}
    /// What is to be kept, when that has changed.
    virtual std::optional<std::string> TakeState() { return std::nullopt; }
};

/// The front that the configuration asks for, or null: then the host sees the engine itself. Throws
/// std::runtime_error for a description that cannot be used.
std::unique_ptr<Front> MakeFront(const CameraConfig &config, GenCpMemory &engine);

} // namespace Orvi::Vcam
