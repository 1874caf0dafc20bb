#include "vcam/HiddenBlocks.h"

#include "vcam/Registers.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace Orvi::Vcam {

namespace {

/// Where the blocks are instead.
constexpr std::uint64_t s_hidden = 0x600000;

constexpr bool IsBlock(std::uint64_t address, std::uint64_t base)
{
    return address >= base && address - base < Reg::ControlSize;
}

/// The engine's address, or none for one that nothing answers at.
std::optional<std::uint64_t> EngineAddress(std::uint64_t address)
{
    if (IsBlock(address, Reg::Control)) {
        return std::nullopt;
    }
    return IsBlock(address, s_hidden) ? address - s_hidden + Reg::Control : address;
}

std::string MoveBlocks(std::string xml)
{
    constexpr std::string_view start = "<Address>0x";
    for (std::size_t at = xml.find(start); at != std::string::npos; at = xml.find(start, at)) {
        at += start.size();
        const std::size_t length = xml.find('<', at) - at;
        const std::uint64_t address = std::strtoull(xml.substr(at, length).c_str(), nullptr, 16);
        if (IsBlock(address, Reg::Control)) {
            char moved[17];
            std::snprintf(moved, sizeof moved, "%" PRIX64, address - Reg::Control + s_hidden);
            xml.replace(at, length, moved);
        }
    }
    return xml;
}

} // namespace

HiddenBlocks::HiddenBlocks(std::string xml, GenCpMemory &engine) : xml_(MoveBlocks(std::move(xml))), engine_(engine) {}

GenCpStatus HiddenBlocks::Read(std::uint64_t address, std::span<std::byte> to)
{
    const auto place = EngineAddress(address);
    return place ? engine_.Read(*place, to) : GenCpStatus::InvalidAddress;
}

GenCpStatus HiddenBlocks::Write(std::uint64_t address, std::span<const std::byte> from)
{
    const auto place = EngineAddress(address);
    return place ? engine_.Write(*place, from) : GenCpStatus::InvalidAddress;
}

} // namespace Orvi::Vcam
