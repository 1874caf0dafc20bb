#include "vcam/Device.h"
#include "vcam/DeviceRegisterTable.h"

#include <algorithm>

namespace Orvi::Vcam {

GenCpStatus Device::Read(std::uint64_t address, std::span<std::byte> to)
{
    const Lock lock(mutex_);
    if (address >= Reg::Eirm) {
        Refresh();
    }
    return registers_.Read(address, to);
}

GenCpStatus Device::Write(std::uint64_t address, std::span<const std::byte> from)
{
    {
        const Lock lock(mutex_);
        if (const GenCpStatus status = registers_.CheckWrite(address, from.size()); status != GenCpStatus::Success) {
            return status;
        }
        const std::span<std::byte> target = registers_.Bytes(address, from.size());
        if (registers_.IsText(address)) {
            std::copy(from.begin(), from.end(), target.begin());
            const std::span name = registers_.Bytes(Reg::UserDefinedName, 64);
            const auto end = std::find(name.begin(), name.end(), std::byte{0});
            stored_.userDefinedName.assign(reinterpret_cast<const char *>(name.data()),
                                           static_cast<std::size_t>(end - name.begin()));
            isStateChanged_ = true;
        } else if (const GenCpStatus status = WriteQuadlets(address, from); status != GenCpStatus::Success) {
            return status;
        }
    }
    Settle();
    return GenCpStatus::Success;
}

/// All or nothing: each quadlet is checked against those before it, and nothing happens until all have passed.
GenCpStatus Device::WriteQuadlets(std::uint64_t address, std::span<const std::byte> from)
{
    RefreshCommands(); // what is done by now is in nobody's way
    const std::span<std::byte> target = registers_.Bytes(address, from.size());
    const std::vector<std::byte> before(target.begin(), target.end());
    GenCpStatus status = GenCpStatus::Success;
    for (std::size_t at = 0; at < from.size() && status == GenCpStatus::Success; at += 4) {
        const auto value = LoadLe<std::uint32_t>(from.data() + at);
        status = CheckQuadlet(address + at, value);
        registers_.SetWord(address + at, value);
    }
    std::copy(before.begin(), before.end(), target.begin());
    if (status != GenCpStatus::Success) {
        return status;
    }
    // A selector changes what the quadlet behind it is about: they are written one after the other.
    for (std::size_t at = 0; at < from.size(); at += 4) {
        const auto value = LoadLe<std::uint32_t>(from.data() + at);
        registers_.SetWord(address + at, value);
        Written(address + at, value);
        ActOn(faults_.AtWrite(address + at, value));
    }
    return GenCpStatus::Success;
}

GenCpStatus Device::CheckQuadlet(std::uint64_t address, std::uint32_t value) const
{
    if (address >= Reg::Control && address < Reg::Control + Reg::ControlSize) {
        const bool isInput = address == Block::LineSource + 0x1C && registers_.Word(Block::LineSelector + 0x1C) == 0;
        // There is nothing to read out of a buffer that is switched off, and nowhere to send it to without a stream.
        const bool isIdleReadOut = address == Block::AcquisitionCommand + 0x1C &&
                                   value == AcquisitionCommand::ImageBufferRead &&
                                   (!IsBuffering() || !IsStreamEnabled());
        return isInput || isIdleReadOut ? GenCpStatus::AccessDenied
                                        : CheckControlWrite(registers_, address, value, IsStreaming());
    }
    if (address >= Reg::Sirm && address < Reg::Sirm + Reg::SirmSize) {
        return CheckStreamInterface(address, value);
    }
    if (address == Reg::EiControl && (value & 1) != 0 && event_.IsHalted()) {
        return GenCpStatus::EventEndpointHalted;
    }
    const DeviceRegister *row = FindDeviceRegister(address);
    if (row == nullptr) {
        return GenCpStatus::Success;
    }
    if (row->locked == Locked::WhileStreaming && IsStreaming()) {
        return GenCpStatus::AccessDenied;
    }
    // A set is stored or loaded to its end before the next one.
    if ((address == Reg::UserSetSave || address == Reg::UserSetLoad) && IsUserSetBusy(address)) {
        return GenCpStatus::Busy;
    }
    // The default set is the factory's: it can be loaded, not saved.
    const bool isFactory = address == Reg::UserSetSave && registers_.Word(Reg::UserSetSelector) == 0;
    if (isFactory) {
        return GenCpStatus::AccessDenied;
    }
    if (address == Reg::FaultArm && value != 0 && !MayArm()) {
        return GenCpStatus::InvalidParameter;
    }
    // Formats of the camera's own description are unpacked.
    if (address == Reg::Packing && value != 0 && config_.xml.empty()) {
        return GenCpStatus::InvalidParameter;
    }
    const bool isInRange = value - row->minimum <= row->maximum - row->minimum; // whatever the sign
    const bool isKnown = (address != Reg::PixelFormat || IsOffered(FindPixelFormat(value))) &&
                         (address != Reg::AcquisitionMode || value == s_singleFrame ||
                          value == AcquisitionCommand::Continuous || value == AcquisitionCommand::MultiFrame);
    return isInRange && isKnown ? GenCpStatus::Success : GenCpStatus::InvalidParameter;
}

GenCpStatus Device::CheckStreamInterface(std::uint64_t address, std::uint32_t value) const
{
    const bool isEnabled = (registers_.Word(Reg::SiControl) & 1) != 0;
    if (address == Reg::SiControl) {
        if ((value & 1) == 0 || isEnabled) {
            return GenCpStatus::Success;
        }
        if (stream_.IsHalted()) {
            return GenCpStatus::StreamEndpointHalted;
        }
        const auto word = [this](std::uint64_t at) { return std::uint64_t{registers_.Word(at)}; };
        const std::uint64_t room = word(Reg::SiTransferSize) * word(Reg::SiTransferCount) +
                                   word(Reg::SiFinalTransfer1) + word(Reg::SiFinalTransfer2);
        const bool isConsistent = word(Reg::SiMaxLeader) >= word(Reg::SiRequiredLeader) &&
                                  word(Reg::SiMaxTrailer) >= word(Reg::SiRequiredTrailer) &&
                                  room >= word(Reg::SiRequiredPayload);
        return isConsistent ? GenCpStatus::Success : GenCpStatus::StreamInconsistent;
    }
    if (isEnabled) {
        return GenCpStatus::WrongConfig;
    }
    // Transfer size and count are free: a host may put a whole image of any size into one transfer.
    const bool isFree = address == Reg::SiTransferSize || address == Reg::SiTransferCount;
    return isFree || value % (1u << s_streamAlignmentLog2) == 0 ? GenCpStatus::Success : GenCpStatus::SizeNotAligned;
}

void Device::Written(std::uint64_t address, std::uint32_t value)
{
    if (IsSelector(address)) {
        ShowSelected(registers_);
    }
    switch (address) {
    case Reg::TimestampLatch:
        registers_.SetLong(Reg::Timestamp, DeviceTime());
        break;
    case Reg::SiControl:
        if ((value & 1) == 0) {
            EndAcquisition();
            isStreamCut_ = true;
        } else {
            nextBlock_ = 0;
            ClearImageBuffer();
        }
        break;
    case Reg::EiControl:
        if ((value & 1) == 0) {
            events_.Clear();
            isEventCut_ = true;
        }
        break;
    case Reg::EventSelector:
        registers_.SetWord(Reg::EventNotification, notifications_[value] ? 1 : 0);
        break;
    case Reg::EventNotification:
        notifications_[registers_.Word(Reg::EventSelector)] = value != 0;
        break;
    case Reg::FaultArm:
        WrittenFaultArm(value);
        break;
    case Reg::UnplugNow:
        isUnplugWritten_ = value != 0;
        break;
    default:
        if (!WrittenCommand(address, value) && !WrittenFeature(address, value)) {
            WrittenFormat(address, value);
        }
        break;
    }
    if (address >= Reg::Control) {
        StoreSelected(registers_);
    }
}

void Device::Refresh()
{
    RefreshCommands();
    const std::uint32_t lines = LineStates();
    const std::uint32_t line = registers_.Word(Block::LineSelector + 0x1C);
    const auto bit = [line](std::uint32_t word) { return word >> line & 1; };
    registers_.SetWord(Block::LineStatus + 0x10, lines);
    registers_.SetWord(Reg::LineStatusOne, bit(lines));
    registers_.SetWord(Reg::LineModeOne, bit(registers_.Word(Block::LineMode + 0x10)));
    registers_.SetWord(Reg::LineInverterOne, bit(registers_.Word(Block::LineInverter + 0x10)));
    registers_.SetWord(Reg::FaultsActed, faults_.Acted());
    registers_.SetWord(Block::ImageBufferCount + 0x1C, static_cast<std::uint32_t>(held_.size()));
}

void Device::WrittenFormat(std::uint64_t address, std::uint32_t value)
{
    constexpr std::uint32_t coding = Block::PixelCoding + 0x1C, size = Block::PixelSize + 0x1C;
    if (address == Reg::PixelFormat) {
        const PixelFormat &format = *FindPixelFormat(value);
        registers_.SetWord(coding, format.coding);
        registers_.SetWord(size, format.size);
    } else if (address == coding || address == size) {
        // Coding and size are written one after the other; a pair that is no format changes nothing yet.
        const PixelFormat *format = FindPixelFormat(registers_.Word(coding), registers_.Word(size));
        if (IsOffered(format)) {
            registers_.SetWord(Reg::PixelFormat, format->code);
        }
    }
    UpdatePayloadSize();
}

bool Device::IsOffered(const PixelFormat *format) const
{
    return format != nullptr && (config_.pixelFormats.empty() ||
                                 std::ranges::find(config_.pixelFormats, format->code) != config_.pixelFormats.end());
}

void Device::UpdatePayloadSize() { registers_.SetLong(Reg::SiRequiredPayload, PayloadBytes(Settings(), PackingNow())); }

void Device::FinishWrite()
{
    bool isStreamCut, isEventCut;
    {
        const Lock lock(mutex_);
        isStreamCut = std::exchange(isStreamCut_, false);
        isEventCut = std::exchange(isEventCut_, false);
    }
    if (isStreamCut) {
        stream_.Abort();
    }
    if (isEventCut) {
        event_.Abort();
    }
    KeepState();
    wake_.notify_all();
}

void Device::PokeRegister(std::uint64_t address, std::uint32_t value)
{
    {
        const Lock lock(mutex_);
        registers_.SetWord(address, value);
        Written(address, value);
        isUnplugRequested_ = isUnplugRequested_ || std::exchange(isUnplugWritten_, false);
    }
    Settle();
}

std::uint32_t Device::PeekRegister(std::uint64_t address) const
{
    const Lock lock(mutex_);
    return address == Block::LineStatus + 0x10 ? LineStates() : registers_.Word(address);
}

std::uint64_t Device::DroppedBlocks() const
{
    const Lock lock(mutex_);
    return dropped_;
}

} // namespace Orvi::Vcam
