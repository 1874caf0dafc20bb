#pragma once
// Numbers of the control protocol (GenCP over USB) and of the three packet prefixes.

#include <cstddef>
#include <cstdint>

namespace Orvi::Vcam {

enum class GenCpStatus : std::uint16_t {
    Success = 0x0000,
    NotImplemented = 0x8001,
    InvalidParameter = 0x8002,
    InvalidAddress = 0x8003,
    WriteProtect = 0x8004,
    BadAlignment = 0x8005,
    AccessDenied = 0x8006,
    Busy = 0x8007,
    InvalidHeader = 0x800E,
    WrongConfig = 0x800F,
    ResendNotSupported = 0xA001,
    StreamEndpointHalted = 0xA002,
    SizeNotAligned = 0xA003,
    StreamInconsistent = 0xA004,
    EventEndpointHalted = 0xA005,
    DataDiscarded = 0xA100, ///< in trailers alone
};

enum class GenCpCommand : std::uint16_t {
    ReadMem = 0x0800,
    WriteMem = 0x0802,
    PendingAck = 0x0805,
    ReadMemStacked = 0x0806,
    WriteMemStacked = 0x0808,
    Event = 0x0C00,
};

constexpr std::uint32_t s_controlPrefix = 0x43563355; // "U3VC"
constexpr std::uint32_t s_leaderPrefix = 0x4C563355;  // "U3VL"
constexpr std::uint32_t s_trailerPrefix = 0x54563355; // "U3VT"
constexpr std::uint32_t s_eventPrefix = 0x45563355;   // "U3VE"

constexpr std::uint16_t s_flagAckWanted = 0x4000;
constexpr std::uint16_t s_flagResend = 0x8000;

constexpr std::size_t s_genCpHeader = 12;

/// Largest command and acknowledge with their headers, as real cameras report them.
constexpr std::size_t s_maxCommand = 1024;
constexpr std::size_t s_maxAck = 1024;
constexpr std::size_t s_maxEventTransfer = 1024;

} // namespace Orvi::Vcam
