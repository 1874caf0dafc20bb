#pragma once
// Events of one camera, in buffers of this program.

#include "Camera.h"
#include "Signal.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

struct Event {
    std::string name; ///< the event id in hexadecimal when the camera does not tell the name
    CAM_EVENT_REQUEST_INFO info;
};

/// The camera's events that the names and globs mean, each once. Throws Failure(Feature) that lists the events there
/// are when one means none.
std::vector<std::string> SelectEvents(const Camera &camera, const std::vector<std::string> &wanted);

/// Opens the channel and switches the events on; switches them off and closes it.
class EventChannel {
  public:
    /// The signal is set when an event arrives, and when the camera is unplugged.
    EventChannel(const Camera &camera, const std::vector<std::string> &names, const Signal &signal);
    ~EventChannel();
    EventChannel(const EventChannel &) = delete;
    EventChannel &operator=(const EventChannel &) = delete;

    /// The oldest event that has arrived, if any. Throws Failure(Camera) when the camera was unplugged.
    std::optional<Event> Next();

  private:
    std::string NameOf(std::uint16_t id);
    void Close() noexcept;

    const Camera &camera_;
    std::vector<std::string> active_;
    std::map<std::uint16_t, std::string> nameOfId_;
    CAM_HANDLE channel_ = 0;
    std::vector<std::byte> memory_;
    std::vector<CAM_HANDLE> requests_;
    std::size_t queued_ = 0; ///< requests that the transport holds, or has completed
};

} // namespace Orvi::Tool
