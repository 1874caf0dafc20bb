#include "vcam/Foreign.h"

#include "vcam/ForeignFeatureTable.h"
#include "vcam/Registers.h"
#include "vcam/Wire.h"

#include <algorithm>

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

ForeignCamera::ForeignCamera(const CameraConfig &config, GenCpMemory &engine)
    : config_(config),
      xml_(ReadForeignXml(config.xml)),
      engine_(engine),
      nodes_(xml_.deviceSide, deviceSide_),
      features_(nodes_, engine)
{
}

void ForeignCamera::DeviceSide::Read(std::uint64_t address, std::span<std::byte> data)
{
    if (camera_.EngineAddress(address, data.size())) {
        camera_.ReadEngine(address, data);
    } else {
        camera_.memory_.Get(address, data);
    }
}

void ForeignCamera::DeviceSide::Write(std::uint64_t address, std::span<const std::byte> data)
{
    camera_.memory_.Set(address, data);
}

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

void ForeignCamera::AddRegisters(bool movingOnly)
{
    for (const ForeignXml::Register &one : xml_.registers) {
        if (movingOnly && !one.isMoving) {
            continue;
        }
        const auto place = nodes_.PlaceOf(one.node);
        const bool isOwn = place && place->size <= s_mostRegister && place->address >= Reg::AbrmSize &&
                           !(movingOnly && EngineAddress(place->address, place->size));
        if (isOwn) {
            memory_.Add(place->address, place->size, one.rights);
        }
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

void ForeignCamera::NameDevice()
{
    // clang-format off
    constexpr std::pair<const char *, std::uint64_t> texts[] = {
        {"DeviceVendorName",   Reg::ManufacturerName}, {"DeviceModelName",        Reg::ModelName},
        {"DeviceFamilyName",   Reg::FamilyName},       {"DeviceVersion",          Reg::DeviceVersion},
        {"DeviceSerialNumber", Reg::SerialNumber},     {"DeviceManufacturerInfo", Reg::ManufacturerInfo},
        {"DeviceID",           Reg::SerialNumber},     {"DeviceUserID",           Reg::UserDefinedName},
    };
    // clang-format on
    for (const auto &[node, address] : texts) {
        std::array<std::byte, 64> bytes{};
        engine_.Read(address, bytes);
        const auto *text = reinterpret_cast<const char *>(bytes.data());
        nodes_.SetText(node, std::string_view(text, strnlen(text, bytes.size())));
    }
}

void ForeignCamera::SetPresets()
{
    for (const RegisterPreset &preset : config_.presets) {
        std::array<std::byte, 4> bytes{};
        StoreLe(bytes.data(), preset.value);
        memory_.Set(preset.address, bytes);
    }
}

void ForeignCamera::PowerUp()
{
    if (const auto symbol = nodes_.Symbol("UserSetDefault"); symbol && !userSets_.empty()) {
        defaultUserSet_ = *symbol;
    }
    memory_ = ForeignMemory();
    shift_ = 0;
    AddRegisters(false);
    PlaceInterfaces();
    NameDevice();
    features_.Forget();
    features_.SetDefaults(xml_.limits, config_.pixelFormats);
    AddRegisters(true);
    AddSelectedRegisters();
    features_.SetDefaults(xml_.limits, config_.pixelFormats); // of what the selectors have brought
    SetPresets();
    features_.Apply();
    features_.ShowResults();
    userSets_.try_emplace("Default", memory_);
    if (!defaultUserSet_.empty()) {
        nodes_.SetSymbol("UserSetDefault", defaultUserSet_);
        LoadUserSet(defaultUserSet_);
    }
}

std::map<EventKind, std::uint16_t> ForeignCamera::EventIds() const
{
    std::map<EventKind, std::uint16_t> ids;
    for (std::size_t kind = 0; kind < std::size(s_eventNames); ++kind) {
        const auto id = xml_.eventIds.find(std::string("Event") + s_eventNames[kind]);
        if (id != xml_.eventIds.end()) {
            ids[static_cast<EventKind>(kind)] = id->second;
        }
    }
    return ids;
}

GenCpStatus ForeignCamera::Read(std::uint64_t address, std::span<std::byte> to)
{
    if (EngineAddress(address, to.size())) {
        return ReadEngine(address, to);
    }
    features_.ShowAutomatic();
    return memory_.Read(address, to);
}

GenCpStatus ForeignCamera::Write(std::uint64_t address, std::span<const std::byte> from)
{
    if (const auto engineAddress = EngineAddress(address, from.size())) {
        return engine_.Write(*engineAddress, from);
    }
    if (const GenCpStatus status = memory_.CheckWrite(address, from.size()); status != GenCpStatus::Success) {
        return status;
    }
    std::vector<std::byte> before(from.size());
    memory_.Get(address, before);
    memory_.Set(address, from);
    const GenCpStatus status = Follow(address, from.size());
    if (status != GenCpStatus::Success) {
        // All or nothing: what has been passed on already is taken back.
        memory_.Set(address, before);
        features_.Apply();
        features_.ShowResults();
    }
    return status;
}

GenCpStatus ForeignCamera::Follow(std::uint64_t address, std::size_t size)
{
    AddRegisters(true);
    if (const GenCpStatus status = features_.Apply(); status != GenCpStatus::Success) {
        return status;
    }
    features_.ShowResults();
    for (const ForeignXml::Command &command : xml_.commands) {
        const auto place = nodes_.PlaceOf(command.registerNode);
        const bool isWritten = place && place->address < address + size && address < place->address + place->size;
        if (!isWritten || !nodes_.IsPending(command.node)) {
            continue;
        }
        if (const GenCpStatus status = Execute(command.node); status != GenCpStatus::Success) {
            return status;
        }
        // Done; a command of the value 0 is so by itself.
        nodes_.SetNumber(command.registerNode, 0);
        break;
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignCamera::Execute(const std::string &command)
{
    if (command != "UserSetLoad" && command != "UserSetSave") {
        return features_.Execute(command);
    }
    const std::string name = nodes_.Symbol("UserSetSelector").value_or("UserSet1");
    if (command == "UserSetLoad") {
        return LoadUserSet(name);
    }
    if (name == "Default") {
        return GenCpStatus::AccessDenied; // it is the factory's
    }
    userSets_[name] = memory_;
    return GenCpStatus::Success;
}

GenCpStatus ForeignCamera::LoadUserSet(const std::string &name)
{
    // A set that was never saved holds what the factory's does.
    const auto set = userSets_.find(name);
    const ForeignMemory before = memory_;
    const auto selected = nodes_.Symbol("UserSetSelector"), byDefault = nodes_.Symbol("UserSetDefault");
    memory_ = set == userSets_.end() ? userSets_["Default"] : set->second;
    if (const GenCpStatus status = features_.Apply(); status != GenCpStatus::Success) {
        memory_ = before;
        return status;
    }
    nodes_.SetSymbol("UserSetSelector", selected.value_or(""));
    nodes_.SetSymbol("UserSetDefault", byDefault.value_or(""));
    features_.ShowResults();
    return GenCpStatus::Success;
}

} // namespace Orvi::Vcam
