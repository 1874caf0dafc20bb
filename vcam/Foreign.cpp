#include "vcam/Foreign.h"

#include "vcam/ForeignFeatureTable.h"
#include "vcam/Registers.h"
#include "vcam/Wire.h"

#include <algorithm>

namespace Orvi::Vcam {

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
    AddLut();
    features_.SetDefaults(xml_.limits, config_.pixelFormats); // of what the selectors have brought
    features_.SetLutDefaults();
    SetPresets();
    features_.Apply();
    features_.PassLut();
    features_.ShowResults();
    userSets_.try_emplace("Default", memory_);
    Restore();
    if (!defaultUserSet_.empty()) {
        nodes_.SetSymbol("UserSetDefault", defaultUserSet_);
        LoadUserSet(defaultUserSet_);
    }
    defaultUserSet_ = nodes_.Symbol("UserSetDefault").value_or("");
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
    if (std::ranges::any_of(xml_.lineStatus, [&](const auto &one) { return IsRegisterIn(one, address, to.size()); })) {
        features_.ShowLines();
    }
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

/// Whether the register, where it is now, has a byte in the range.
bool ForeignCamera::IsRegisterIn(const std::string &registerNode, std::uint64_t address, std::size_t size) const
{
    const auto place = nodes_.PlaceOf(registerNode);
    return place && place->address < address + size && address < place->address + place->size;
}

GenCpStatus ForeignCamera::Follow(std::uint64_t address, std::size_t size)
{
    constexpr std::size_t largestEntry = 8; // what is longer may be a look-up table as a whole
    AddRegisters(true);
    GenCpStatus status = features_.Apply();
    if (status == GenCpStatus::Success && size > largestEntry) {
        status = features_.PassLut();
    }
    if (status != GenCpStatus::Success) {
        return status;
    }
    features_.ShowResults();
    if (const auto symbol = nodes_.Symbol("UserSetDefault"); symbol && !defaultUserSet_.empty()) {
        isStateChanged_ = isStateChanged_ || *symbol != defaultUserSet_;
        defaultUserSet_ = *symbol;
    }
    for (const ForeignXml::Command &command : xml_.commands) {
        if (!IsRegisterIn(command.registerNode, address, size) || !nodes_.IsPending(command.node)) {
            continue;
        }
        if (status = Execute(command.node); status != GenCpStatus::Success) {
            return status;
        }
        // Done; a command of the value 0 is so by itself.
        nodes_.SetNumber(command.registerNode, 0);
        break;
    }
    return GenCpStatus::Success;
}

} // namespace Orvi::Vcam
