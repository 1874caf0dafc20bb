#pragma once
// The camera's own and the virtual-only registers: initial values and what may be written to them.

#include "vcam/ControlBlocks.h"
#include "vcam/EventQueue.h"
#include "vcam/Faults.h"
#include "vcam/Registers.h"

namespace Orvi::Vcam {

/// Sizes in the stream interface are multiples of 2 to this power.
constexpr std::uint32_t s_streamAlignmentLog2 = 10;

/// The acquisition mode that is no acquisition command.
constexpr std::uint32_t s_singleFrame = 1;

/// Entries of the look-up table, of the list of defective pixels, and of the sequential shutter.
constexpr std::uint32_t s_lutSize = 1024, s_dpcSize = 32, s_shutterSize = 16;

struct DeviceRegister {
    std::uint64_t address;
    Rights rights;
    std::uint32_t initial;
    std::uint32_t minimum, maximum; ///< of what is written; signed when the minimum is negative
    Locked locked;
};

// clang-format off
inline constexpr DeviceRegister s_deviceRegisters[] = {
    // address                 rights             initial     minimum  maximum     locked
    {Reg::PixelFormat,         Rights::ReadWrite, 0x01080001, 0, 0xFFFFFFFF,       Locked::WhileStreaming},
    {Reg::TlParamsLocked,      Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::EventSelector,       Rights::ReadWrite, 0,          0, static_cast<std::uint32_t>(EventKind::Count) - 1, Locked::Never},
    {Reg::EventNotification,   Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::EventLostCount,      Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::AcquisitionMode,     Rights::ReadWrite, AcquisitionCommand::Continuous, s_singleFrame, AcquisitionCommand::MultiFrame, Locked::Never},
    {Reg::AcquisitionStart,    Rights::ReadWrite, 0,          1, 1,                Locked::Never},
    {Reg::AcquisitionAbort,    Rights::ReadWrite, 0,          1, 1,                Locked::Never},
    {Reg::AcquisitionActive,   Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::BalanceRatioSelector, Rights::ReadWrite, 0,         0, 1,                Locked::Never},
    {Reg::BalanceRatio,        Rights::ReadWrite, 1000,       250, 4000,           Locked::Never},
    {Reg::BlueRatio,           Rights::ReadWrite, 1000,       250, 4000,           Locked::Never},
    {Reg::TriggerActivation,   Rights::ReadWrite, 1,          0, 1,                Locked::Never},
    {Reg::UserSetSelector,     Rights::ReadWrite, 0,          0, 15,               Locked::Never},
    {Reg::UserSetLoad,         Rights::ReadWrite, 0,          1, 1,                Locked::WhileStreaming},
    {Reg::UserSetSave,         Rights::ReadWrite, 0,          1, 1,                Locked::Never},
    {Reg::UserSetDefault,      Rights::ReadWrite, 0,          0, 15,               Locked::Never},
    {Reg::UserSetDone,         Rights::Read,      1,          0, 0,                Locked::Never},
    {Reg::ExposureMode,        Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::TriggerSelector,     Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::LutEnable,           Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::LutIndex,            Rights::ReadWrite, 0,          0, s_lutSize - 1,    Locked::Never},
    {Reg::LutValue,            Rights::ReadWrite, 0,          0, s_lutSize - 1,    Locked::Never},
    {Reg::MatrixRow,           Rights::ReadWrite, 0,          0, 2,                Locked::Never},
    {Reg::MatrixColumn,        Rights::ReadWrite, 0,          0, 2,                Locked::Never},
    {Reg::MatrixElement,       Rights::ReadWrite, 0,          0u - 2000, 2000,     Locked::Never},
    {Reg::DpcEnable,           Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::DpcNumber,           Rights::ReadWrite, 0,          0, s_dpcSize,        Locked::Never},
    {Reg::DpcIndex,            Rights::ReadWrite, 0,          0, s_dpcSize - 1,    Locked::Never},
    {Reg::DpcEntryX,           Rights::ReadWrite, 0,          0, 0xFFFF,           Locked::Never},
    {Reg::DpcEntryY,           Rights::ReadWrite, 0,          0, 0xFFFF,           Locked::Never},
    {Reg::ShutterEnable,       Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::ShutterTerminateAt,  Rights::ReadWrite, s_shutterSize, 1, s_shutterSize, Locked::Never},
    {Reg::ShutterIndex,        Rights::ReadWrite, 1,          1, s_shutterSize,    Locked::Never},
    {Reg::ShutterEntry,        Rights::ReadWrite, 0,          20, 16000000,        Locked::Never},
    {Reg::FrameSynchronization, Rights::ReadWrite, 0,         0, 1,                Locked::Never},
    {Reg::LineInverterOne,     Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::LineModeOne,         Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::LineStatusOne,       Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::UnplugNow,           Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::ReplugDelay,         Rights::ReadWrite, 0,          0, 3600000,          Locked::Never},
    {Reg::DroppedBlocks,       Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::Unthrottled,         Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::LineLevels,          Rights::ReadWrite, 0,          0, 0x7,              Locked::Never},
    {Reg::PendingAcks,         Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::CommandDelay,        Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::LastExposure,        Rights::Read,      0,          0, 0,                Locked::Never},
    {Reg::Packing,             Rights::ReadWrite, 0,          0, 2,                Locked::WhileStreaming},
    {Reg::LostAcks,            Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultMoment,         Rights::ReadWrite, 0,          0, 3,                Locked::Never},
    {Reg::FaultAt,             Rights::ReadWrite, Reg::s_unset, 0, 0xFFFFFFFF,     Locked::Never},
    {Reg::FaultEvery,          Rights::ReadWrite, 1,          1, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultFrom,           Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultProbability,    Rights::ReadWrite, 1000000,    0, 1000000,          Locked::Never},
    {Reg::FaultTimes,          Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultAddress,        Rights::ReadWrite, Reg::s_unset, 0, 0xFFFFFFFF,     Locked::Never},
    {Reg::FaultValue,          Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultMask,           Rights::ReadWrite, 0xFFFFFFFF, 0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultAction,         Rights::ReadWrite, 0,          0, static_cast<std::uint32_t>(FaultAction::Count) - 1, Locked::Never},
    {Reg::FaultAmount,         Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultTarget,         Rights::ReadWrite, 0,          0, 0xFFFFFFFF,       Locked::Never},
    {Reg::FaultArm,            Rights::ReadWrite, 0,          0, 1,                Locked::Never},
    {Reg::FaultsActed,         Rights::Read,      0,          0, 0,                Locked::Never},
};
// clang-format on

/// The camera's own registers that belong to its settings; what selectors choose is in the tables.
inline constexpr std::uint64_t s_ownSettings[] = {
    Reg::AcquisitionMode, Reg::BlueRatio,          Reg::TriggerActivation,
    Reg::LutEnable,       Reg::DpcEnable,          Reg::DpcNumber,
    Reg::ShutterEnable,   Reg::ShutterTerminateAt, Reg::FrameSynchronization,
};

constexpr const DeviceRegister *FindDeviceRegister(std::uint64_t address)
{
    for (const DeviceRegister &row : s_deviceRegisters) {
        if (row.address == address) {
            return &row;
        }
    }
    return nullptr;
}

inline void LoadDeviceRegisters(RegisterSpace &space)
{
    space.AddRegion(Reg::Device, Reg::DeviceSize, Rights::Read);
    space.AddRegion(Reg::Tables, Reg::TablesSize, Rights::Read);
    space.AddRegion(Reg::Virtual, Reg::VirtualSize, Rights::Read);
    for (const DeviceRegister &row : s_deviceRegisters) {
        space.SetWord(row.address, row.initial);
        space.SetRights(row.address, 4, row.rights);
    }
}

} // namespace Orvi::Vcam
