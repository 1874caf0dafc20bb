// Where things are in the address space of another model's camera: its registers, and the engine's own ones.

#include "vcam/Foreign.h"
#include "vcam/Registers.h"
#include "vcam/Wire.h"

#include <algorithm>
#include <array>

namespace Orvi::Vcam {

namespace {

struct Region {
    std::uint64_t base, size;
};
constexpr Region s_virtual = {Reg::Virtual, Reg::VirtualSize};
constexpr std::uint64_t s_descriptionRoom = 4096; // more than the archive can be longer than the text

constexpr bool IsIn(const Region &region, std::uint64_t address, std::size_t size)
{
    return address >= region.base && address - region.base + size <= region.size;
}

/// The engine's interface registers: a host finds them through pointers.
std::vector<Region> Interfaces(std::size_t xmlSize)
{
    return {{Reg::Sbrm, Reg::SbrmSize},
            {Reg::Sirm, Reg::SirmSize},
            {Reg::Eirm, Reg::EirmSize},
            {Reg::ManifestTable, Reg::ManifestTableSize},
            {Reg::DescriptionFile, xmlSize + s_descriptionRoom}};
}

/// Where pointers to them are.
constexpr std::uint64_t s_pointers[] = {Reg::ManifestTableAddress, Reg::SbrmAddress, Reg::Sbrm + 0x20, Reg::Sbrm + 0x2C,
                                        Reg::ManifestTable + 8 + 0x08};

constexpr std::size_t s_mostRegister = std::size_t{1} << 24;

} // namespace

std::optional<std::uint64_t> ForeignCamera::EngineAddress(std::uint64_t address, std::size_t size) const
{
    if (IsIn({0, Reg::AbrmSize}, address, size)) {
        return address;
    }
    if (IsIn(s_virtual, address, size) && !memory_.Touches(s_virtual.base, s_virtual.size)) {
        return address;
    }
    for (const Region &region : Interfaces(config_.xml.size())) {
        if (IsIn({region.base + shift_, region.size}, address, size)) {
            return address - shift_;
        }
    }
    return std::nullopt;
}

GenCpStatus ForeignCamera::ReadEngine(std::uint64_t address, std::span<std::byte> to)
{
    const std::uint64_t from = *EngineAddress(address, to.size());
    const GenCpStatus status = engine_.Read(from, to);
    if (status != GenCpStatus::Success || shift_ == 0) {
        return status;
    }
    for (const std::uint64_t pointer : s_pointers) {
        std::array<std::byte, 8> bytes{};
        engine_.Read(pointer, bytes);
        StoreLe(bytes.data(), LoadLe<std::uint64_t>(bytes.data()) + shift_);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (pointer + i >= from && pointer + i - from < to.size()) {
                to[pointer + i - from] = bytes[i];
            }
        }
    }
    return status;
}

/// The description's registers come first: what is in their way is elsewhere.
void ForeignCamera::PlaceInterfaces()
{
    constexpr std::uint64_t step = 0x10000000;
    const std::vector<Region> regions = Interfaces(config_.xml.size());
    const auto isFree = [&] {
        return std::ranges::none_of(
            regions, [&](const Region &region) { return memory_.Touches(region.base + shift_, region.size); });
    };
    for (shift_ = 0; !isFree(); shift_ += step) {
    }
}

void ForeignCamera::AddRegister(const ForeignXml::Register &one, bool isMoving)
{
    const auto place = nodes_.PlaceOf(one.node);
    const bool isOwn = place && place->size <= s_mostRegister && place->address >= Reg::AbrmSize &&
                       !(isMoving && EngineAddress(place->address, place->size));
    if (isOwn) {
        memory_.Add(place->address, place->size, one.rights);
    }
}

void ForeignCamera::AddRegisters(bool movingOnly)
{
    for (const ForeignXml::Register &one : xml_.registers) {
        if (!movingOnly || one.isMoving) {
            AddRegister(one, movingOnly);
        }
    }
}

/// A look-up table may have more entries than other selectors choices.
void ForeignCamera::AddLut()
{
    const auto value = std::ranges::find(xml_.registers, xml_.lutValue, &ForeignXml::Register::node);
    if (value != xml_.registers.end() && value->isMoving) {
        features_.EachLutEntry([&](double) { AddRegister(*value, true); });
    }
}

/// Registers that are found through a selector are there for all of its choices.
void ForeignCamera::AddSelectedRegisters()
{
    const bool isAnyMoving = std::ranges::any_of(xml_.registers, &ForeignXml::Register::isMoving);
    if (!isAnyMoving) {
        return;
    }
    for (const std::string &selector : nodes_.Selectors()) {
        const bool isEnumeration = !nodes_.Symbols(selector).empty();
        nodes_.EachChoice(selector, [&] {
            AddRegisters(true);
            if (isEnumeration) {
                nodes_.MakeValid();
            }
        });
    }
}

} // namespace Orvi::Vcam
