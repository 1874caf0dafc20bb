#include "u3v/protocol/EventPacket.h"

#include "u3v/protocol/Wire.h"

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

} // namespace Orvi::U3v
