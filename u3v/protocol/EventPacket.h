#pragma once
// What a packet of the event interface carries, and the block in which applications get an event.

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

/// A delivered event is a block of our own layout: event id at 14 (16 bits), stream channel at 18 (16), device time in
/// ns at 20 (64), length of the event's own data at 28 (32), block id or 0 at 32 (64), the data from 40.
inline constexpr std::size_t eventBlockHeader = 40;
/// As much of the event's data as there is room for; the block holds the header at least. Returns the bytes used.
std::size_t WriteEventBlock(const EventEntry &event, std::uint64_t blockId, std::span<std::byte> block);

} // namespace Orvi::U3v
