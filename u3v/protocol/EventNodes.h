#pragma once
// Events by name: the nodes that switch them on, and those that show what the last one carried.

#include "u3v/protocol/Camera.h"
#include "u3v/protocol/EventPacket.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::U3v {

class EventNodes {
  public:
    explicit EventNodes(Camera &camera) : camera_(camera) {}

    /// Throw StatusError: 0x5 when the event is on, 0x3 when it is not on; GenApi::Error when the camera has none.
    void Activate(const std::string &name, const std::string &nodeName, void *signal);
    void Deactivate(const std::string &name);
    /// Switches off what is on, as far as the camera takes it.
    void DeactivateAll() noexcept;

    struct Known {
        std::uint64_t blockId = 0;
        void *signal = nullptr;
    };
    /// Shows an event to its nodes and asks them what they make of it.
    Known Deliver(const EventEntry &event);

  private:
    struct Active {
        std::string name;
        std::string nodeName;
        void *signal;
        std::optional<std::uint64_t> id; ///< known once one has arrived, or when the description tells it
    };

    void Switch(const std::string &name, bool on);
    std::optional<std::uint64_t> IdOf(const std::string &nodeName);
    std::optional<std::int64_t> ReadNode(const std::string &name);

    Camera &camera_;
    std::mutex mutex_;
    std::vector<Active> active_;
};

} // namespace Orvi::U3v
