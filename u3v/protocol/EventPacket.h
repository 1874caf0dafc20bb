#pragma once
// What a packet of the event interface carries.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Orvi::U3v {

struct EventEntry {
    std::uint16_t id;
    std::uint64_t timestamp;
    std::span<const std::byte> raw;  ///< the entry from its size field on, as event nodes see it
    std::span<const std::byte> data; ///< the event's own
};

/// The events of a packet: one, or several in a row. Nothing when the packet is malformed.
std::optional<std::vector<EventEntry>> ParseEventPacket(std::span<const std::byte> packet);

} // namespace Orvi::U3v
