#pragma once
// Events on their way to the host: a bounded queue that loses the newest, and the packets of the event endpoint.

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

/// In the order of EventSelector.
enum class EventKind : std::uint8_t {
    ExposureStart,
    ExposureEnd,
    FrameStart,
    FrameEnd,
    AcquisitionStart,
    AcquisitionEnd,
    Line0RisingEdge,
    Test,
    FrameLost,
    Count,
};

/// The event id that packets and the description carry.
constexpr std::uint16_t EventId(EventKind kind)
{
    return kind == EventKind::Test ? std::uint16_t{0x4FFF}
                                   : static_cast<std::uint16_t>(0x9001 + static_cast<unsigned>(kind));
}

struct Event {
    EventKind kind;
    std::uint64_t time;  ///< ns, the clock of the image leaders
    std::uint64_t block; ///< block id; 0 for events that belong to no image
};

class EventQueue {
  public:
    static constexpr std::size_t s_depth = 64;

    /// Keeps the event, or counts it as lost when the queue is full.
    void Push(const Event &event);
    /// The next packet for the host, with as many events as fit when `severalInPacket`; empty when there is none.
    std::vector<std::byte> TakePacket(bool severalInPacket);
    void Clear();
    /// As after power-up: no events, nothing lost.
    void Reset();
    std::uint32_t Lost() const;
    /// Another id for a kind of event; it stays.
    void SetId(EventKind kind, std::uint16_t id);

  private:
    mutable std::mutex mutex_;
    std::map<EventKind, std::uint16_t> ids_; // that are not EventId()'s
    std::deque<Event> events_;
    std::uint32_t lost_ = 0;
    std::uint16_t requestId_ = 0;
};

} // namespace Orvi::Vcam
