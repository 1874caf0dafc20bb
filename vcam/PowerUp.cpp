#include "vcam/Description.h"
#include "vcam/Device.h"
#include "vcam/DeviceRegisterTable.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr std::uint64_t s_capability = 1u << 0     // user-defined name
                                       | 1u << 3   // time stamps
                                       | 1u << 8   // family name
                                       | 1u << 9   // technology-specific registers
                                       | 1u << 10  // endianness registers
                                       | 1u << 11  // write acknowledges tell the length
                                       | 1u << 12  // several events in a packet
                                       | 1u << 13  // stacked commands
                                       | 1u << 14; // software version

constexpr std::uint32_t s_leaderSize = 52, s_trailerSize = 32;

void LoadAbrm(RegisterSpace &space, const UsbIdentity &identity)
{
    space.AddRegion(0, Reg::AbrmSize, Rights::Read);
    space.SetWord(Reg::GenCpVersion, 0x00010000);
    // clang-format off
    const std::pair<std::uint64_t, std::string_view> texts[] = {
        {Reg::ManufacturerName, identity.vendor},           {Reg::ModelName,     identity.model},
        {Reg::FamilyName,       identity.family},           {Reg::DeviceVersion, identity.deviceVersion},
        {Reg::ManufacturerInfo, identity.manufacturerInfo}, {Reg::SerialNumber,  identity.serial},
        {Reg::UserDefinedName,  identity.userDefinedName},  {Reg::SoftwareVersion, "1.0"},
    };
    // clang-format on
    for (const auto &[address, text] : texts) {
        space.SetText(address, 64, text);
    }
    space.SetRights(Reg::UserDefinedName, 64, Rights::Text);
    space.SetLong(Reg::DeviceCapability, s_capability);
    space.SetWord(Reg::MaxResponseTime, 500);
    space.SetLong(Reg::ManifestTableAddress, Reg::ManifestTable);
    space.SetLong(Reg::SbrmAddress, Reg::Sbrm);
    space.SetRights(Reg::DeviceConfiguration, 16, Rights::ReadWrite); // with heartbeat and message channel
    space.SetRights(Reg::TimestampLatch, 4, Rights::Write);
    space.SetLong(Reg::TimestampIncrement, 1);
    space.SetRights(Reg::AccessPrivilege, 4, Rights::ReadWrite);
    space.SetWord(Reg::ProtocolEndianness, 0xFFFFFFFF);
    space.SetWord(Reg::ImplementationEndianness, 0xFFFFFFFF);
}

void LoadSbrm(RegisterSpace &space, LinkSpeed speed, bool hasControlRegisters)
{
    space.AddRegion(Reg::Sbrm, Reg::SbrmSize, Rights::Read);
    FieldWriter(space.Bytes(Reg::Sbrm, Reg::SbrmSize))
        .Put(std::uint32_t{0x00010000}) // U3V version 1.0
        // Stream, event and control-register interfaces.
        .Put(std::uint64_t{hasControlRegisters ? 0x7u : 0x3u})
        .Put(std::uint64_t{0}) // configuration
        .Put(static_cast<std::uint32_t>(s_maxCommand))
        .Put(static_cast<std::uint32_t>(s_maxAck))
        .Put(std::uint32_t{1}) // stream channels
        .Put(Reg::Sirm)
        .Put(Reg::SirmSize)
        .Put(Reg::Eirm)
        .Put(Reg::EirmSize)
        .Put(hasControlRegisters ? Reg::Control : std::uint64_t{0})
        .Put(static_cast<std::uint32_t>(speed));
}

void LoadSirm(RegisterSpace &space)
{
    space.AddRegion(Reg::Sirm, Reg::SirmSize, Rights::Read);
    space.SetWord(Reg::SiInfo, s_streamAlignmentLog2 << 24);
    space.SetRights(Reg::SiControl, 4, Rights::ReadWrite);
    space.SetWord(Reg::SiRequiredLeader, s_leaderSize);
    space.SetWord(Reg::SiRequiredTrailer, s_trailerSize);
    space.SetRights(Reg::SiMaxLeader, Reg::SiMaxTrailer + 4 - Reg::SiMaxLeader, Rights::ReadWrite);
}

void LoadEirm(RegisterSpace &space)
{
    space.AddRegion(Reg::Eirm, Reg::EirmSize, Rights::Read);
    space.SetRights(Reg::EiControl, 4, Rights::ReadWrite);
    space.SetWord(Reg::EiMaxTransfer, s_maxEventTransfer);
    space.SetRights(Reg::EiTestControl, 4, Rights::ReadWrite);
}

void LoadManifest(RegisterSpace &space, const StoredDescription &description)
{
    const std::span<const std::byte> archive = description.archive;
    space.AddRegion(Reg::ManifestTable, Reg::ManifestTableSize, Rights::Read);
    const std::span table = space.Bytes(Reg::ManifestTable, Reg::ManifestTableSize);
    FieldWriter(table)
        .Put(std::uint64_t{1})
        .Put(std::uint32_t{0x01000000}) // file version 1.0.0
        .Put(std::uint32_t{0x01010400}) // schema 1.1, zipped, device description
        .Put(Reg::DescriptionFile)
        .Put(static_cast<std::uint64_t>(archive.size()));
    std::copy(description.sha1.begin(), description.sha1.end(), table.begin() + 8 + 0x18);
    space.AddImage(Reg::DescriptionFile, archive);
}

/// What the configuration narrows: the pixel formats on offer and the frame rate.
void ApplyConfig(RegisterSpace &space, const CameraConfig &config)
{
    if (!config.pixelFormats.empty()) {
        const auto offer = [&space](std::uint32_t block, std::uint32_t PixelFormat::*part, const auto &formats) {
            for (std::uint32_t word = 0; word < 4; ++word) {
                space.SetWord(block + 0x0C + 4 * word, 0);
            }
            for (const std::uint32_t code : formats) {
                const std::uint32_t value = FindPixelFormat(code)->*part;
                const std::uint32_t mask = block + 0x0C + value / 32 * 4;
                space.SetWord(mask, space.Word(mask) | 1u << value % 32);
            }
            space.SetWord(block + 0x1C, FindPixelFormat(formats.front())->*part);
        };
        offer(Block::PixelCoding, &PixelFormat::coding, config.pixelFormats);
        offer(Block::PixelSize, &PixelFormat::size, config.pixelFormats);
        space.SetWord(Reg::PixelFormat, config.pixelFormats.front());
    }
    if (config.frameRateLimit) {
        const auto limit = static_cast<std::uint32_t>(std::llround(*config.frameRateLimit * 1000));
        space.SetWord(Block::FrameRate + 0x18, limit);
        space.SetWord(Block::FrameRate + 0x1C, std::min(limit, space.Word(Block::FrameRate + 0x1C)));
    }
}

} // namespace

void Device::PowerUp()
{
    const UsbIdentity identity = Describe();
    registers_ = RegisterSpace();
    LoadAbrm(registers_, identity);
    LoadSbrm(registers_, config_.speedRegister.value_or(config_.speed), front_ == nullptr);
    LoadSirm(registers_);
    LoadEirm(registers_);
    LoadManifest(registers_, *description_);
    registers_.AddRegion(Reg::Control, Reg::ControlSize, Rights::Read);
    LoadControlBlocks(registers_, config_.sensorWidth, config_.sensorHeight);
    LoadDeviceRegisters(registers_);
    ApplyConfig(registers_, config_);
    if (!config_.xml.empty()) {
        // The steps of another model are those of its description.
        for (const std::uint32_t step : {ImageSizeWord::OffsetXInc, ImageSizeWord::OffsetYInc, ImageSizeWord::WidthInc,
                                         ImageSizeWord::HeightInc, ImageSizeWord::WidthMin, ImageSizeWord::HeightMin}) {
            registers_.SetWord(step, 1);
        }
    }
    LoadTables(registers_, config_.sensorWidth, config_.sensorHeight);

    server_.Reset();
    events_.Reset();
    acks_.clear();
    notifications_.fill(false);
    notifications_[static_cast<std::size_t>(EventKind::Test)] = true;
    isControlOutHalted_ = false;
    isUnplugRequested_ = false;
    replugAt_.reset();
    nextFrame_.clear();
    nextCommand_.clear();
    badEvents_ = 0;
    isEventHaltDue_ = false;
    faultAlarm_.reset();
    ++powerUps_;
    poweredUp_ = Clock::now();
    acquisition_ = {};
    nextBlock_ = 0;
    lineLevels_ = 0;
    dropped_ = 0;
    triggers_.clear();
    pulse_ = {};
    burstLeft_ = 0;
    isSoftwareActive_ = false;
    timers_ = {};
    commands_.clear();
    if (stored_.userSets[0].empty()) {
        SaveUserSet(0);
    }
    registers_.SetWord(Reg::UserSetDefault, stored_.defaultUserSet);
    LoadUserSet(stored_.defaultUserSet);
    faults_.Restart(poweredUp_);
    AwaitFaultTime();
}

/// Of the camera's own description; another model's front has its own. What a host may write is as if one had.
void Device::SetPresets()
{
    if (!config_.xml.empty()) {
        return;
    }
    GenCpMemory &memory = front_ ? static_cast<GenCpMemory &>(*front_) : *this;
    for (const auto &[address, value] : config_.presets) {
        std::array<std::byte, sizeof value> bytes{};
        StoreLe(bytes.data(), value);
        if (memory.Write(address, bytes) == GenCpStatus::WriteProtect && !front_) {
            const Lock lock(mutex_);
            registers_.SetWord(address, value);
        }
    }
}

} // namespace Orvi::Vcam
