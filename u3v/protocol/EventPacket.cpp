#include "u3v/protocol/EventPacket.h"

#include "u3v/protocol/Wire.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::uint16_t eventCommand = 0x0C00;
constexpr std::size_t packetHeader = 12, entryHeader = 12;

EventEntry ParseEntry(std::span<const std::byte> raw)
{
    return {Load<std::uint16_t>(raw, 2), Load<std::uint64_t>(raw, 4), raw, raw.subspan(entryHeader)};
}

} // namespace

std::optional<std::vector<EventEntry>> ParseEventPacket(std::span<const std::byte> packet)
{
    if (packet.size() < packetHeader + entryHeader || Load<std::uint32_t>(packet, 0) != eventPrefix ||
        Load<std::uint16_t>(packet, 6) != eventCommand)
        return std::nullopt;
    const std::size_t length = Load<std::uint16_t>(packet, 8);
    if (length < entryHeader || packetHeader + length > packet.size())
        return std::nullopt;

    std::span<const std::byte> rest = packet.subspan(packetHeader, length);
    // A single event leaves its size out.
    if (Load<std::uint16_t>(rest, 0) == 0)
        return std::vector{ParseEntry(rest)};
    std::vector<EventEntry> entries;
    while (!rest.empty()) {
        if (rest.size() < entryHeader)
            return std::nullopt;
        const std::size_t size = Load<std::uint16_t>(rest, 0);
        if (size < entryHeader || size > rest.size())
            return std::nullopt;
        entries.push_back(ParseEntry(rest.first(size)));
        rest = rest.subspan(size);
    }
    return entries;
}

std::size_t WriteEventBlock(const EventEntry &event, std::uint64_t blockId, std::span<std::byte> block)
{
    const std::size_t length = std::min(event.data.size(), block.size() - eventBlockHeader);
    std::fill_n(block.begin(), eventBlockHeader, std::byte{0});
    Store<std::uint32_t>(block, 0, eventPrefix);
    Store<std::uint16_t>(block, 14, event.id);
    Store<std::uint16_t>(block, 18, 0); // a camera has one stream channel
    Store<std::uint64_t>(block, 20, event.timestamp);
    Store<std::uint32_t>(block, 28, static_cast<std::uint32_t>(length));
    Store<std::uint64_t>(block, 32, blockId);
    std::copy_n(event.data.begin(), length, block.begin() + eventBlockHeader);
    return eventBlockHeader + length;
}

} // namespace Orvi::U3v
