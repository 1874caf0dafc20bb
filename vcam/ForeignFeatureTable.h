#pragma once
// The standard features that the engine has registers for, and how their values become the registers'.

#include "vcam/ControlBlocks.h"
#include "vcam/Packing.h"
#include "vcam/PixelFormats.h"
#include "vcam/Registers.h"

#include <optional>
#include <span>
#include <string_view>

namespace Orvi::Vcam {

/// A number: so many raw values of the register make one of the feature's unit.
struct ForeignNumber {
    const char *node, *otherNode;
    std::uint32_t block;
    double factor;
    bool isTime;    ///< in µs unless the node has another unit
    double initial; ///< power-up value, in the feature's unit
    /// For limits that are registers of their own: what they are at power-up.
    double minimum, maximum;
};

// clang-format off
inline constexpr ForeignNumber s_foreignNumbers[] = {
    {"ExposureTime",          "ExposureTimeAbs",         Block::ExposureTime,     1,    true,  10000, 20,   1000000},
    {"AcquisitionFrameRate",  "AcquisitionFrameRateAbs", Block::FrameRate,        1000, false, 30,    1,    1000},
    {"Gain",                  "GainAbs",                 Block::Gain,             100,  false, 0,     0,    24},
    {"BlackLevel",            "BlackLevelRaw",           Block::BlackLevel,       16,   false, 0,     0,    63},
    {"Gamma",                 nullptr,                   Block::Gamma,            100,  false, 1,     0.25, 4},
    {"Hue",                   nullptr,                   Block::Hue,              10,   false, 0,     -180, 180},
    {"Saturation",            nullptr,                   Block::Saturation,       1,    false, 100,   0,    200},
    {"Sharpness",             nullptr,                   Block::Sharpness,        1,    false, 0,     0,    8},
    {"AcquisitionFrameCount", nullptr,                   Block::FrameCount,       1,    false, 1,     1,    65535},
    {"AcquisitionBurstFrameCount", nullptr,              Block::TriggerParameter, 1,    false, 1,     1,    255},
    {"TriggerDelay",          "TriggerDelayAbs",         Block::TriggerDelay,     1,    true,  0,     0,    1000000},
    {"BinningHorizontal",     nullptr,                   Block::BinningX,         1,    false, 1,     1,    4},
    {"BinningVertical",       nullptr,                   Block::BinningY,         1,    false, 1,     1,    4},
    {"DecimationHorizontal",  nullptr,                   Block::DecimationX,      1,    false, 1,     1,    4},
    {"DecimationVertical",    nullptr,                   Block::DecimationY,      1,    false, 1,     1,    4},
};

struct ForeignSymbol {
    const char *name;
    std::uint32_t value;
};

inline constexpr ForeignSymbol s_autoSymbols[]      = {{"Off", s_modeManual}, {"Continuous", s_modeAutomatic}};
inline constexpr ForeignSymbol s_whiteSymbols[]     = {{"Off", s_modeManual}, {"Once", s_modeOnce}};
inline constexpr ForeignSymbol s_rateSymbols[]      = {{"Off", s_modeFree}, {"On", s_modeManual}};
inline constexpr ForeignSymbol s_offOnSymbols[]     = {{"Off", 0}, {"On", 1}};
inline constexpr ForeignSymbol s_lineSourceSymbols[] = {
    {"Timer0Active", LineSourceValue::Timer0Active}, {"Timer1Active", LineSourceValue::Timer1Active},
    {"AcquisitionActive", LineSourceValue::AcquisitionActive}, {"FrameTriggerWait", LineSourceValue::FrameTriggerWait},
    {"FrameActive", LineSourceValue::FrameActive}, {"FrameTransferActive", LineSourceValue::FrameTransferActive},
    {"ExposureActive", LineSourceValue::ExposureActive},
};
inline constexpr ForeignSymbol s_timerSourceSymbols[] = {
    {"Line0", TimerSource::Line0}, {"FrameTrigger", TimerSource::FrameTrigger},
    {"ExposureStart", TimerSource::ExposureStart}, {"ExposureEnd", TimerSource::ExposureEnd},
};
inline constexpr ForeignSymbol s_exposureSymbols[]  = {{"Timed", 0}, {"TriggerWidth", 1}};
inline constexpr ForeignSymbol s_acquisitionSymbols[] = {
    {"Continuous", AcquisitionCommand::Continuous}, {"MultiFrame", AcquisitionCommand::MultiFrame}, {"SingleFrame", 1},
};
inline constexpr ForeignSymbol s_patternSymbols[] = {
    {"Off", 0}, {"Black", 1}, {"White", 2}, {"GreyA", 3}, {"BrightGrey", 3}, {"GreyB", 4}, {"DarkGrey", 4},
    {"GreyHorizontalRamp", 5}, {"GreyHorizontalRampMoving", 5}, {"GreyScale", 6}, {"ColorBar", 7},
    {"GreyVerticalRamp", 8}, {"GreyVerticalRampMoving", 8},
};

/// A choice: the value of the register for each symbol; other symbols do nothing.
struct ForeignChoice {
    const char *node;
    std::uint64_t address;
    std::span<const ForeignSymbol> symbols;
};
inline constexpr ForeignChoice s_foreignChoices[] = {
    {"AcquisitionMode",            Reg::AcquisitionMode,        s_acquisitionSymbols},
    {"AcquisitionFrameRateEnable", Block::FrameRate + 0x08,     s_rateSymbols},
    {"ExposureAuto",               Block::ExposureTime + 0x08,  s_autoSymbols},
    {"ExposureMode",               Reg::ExposureMode,           s_exposureSymbols},
    {"GainAuto",                   Block::Gain + 0x08,          s_autoSymbols},
    {"BalanceWhiteAuto",           Block::WhiteBalance + 0x08,  s_whiteSymbols},
    {"ReverseX",                   Block::ReverseX + 0x10,      s_offOnSymbols},
    {"ReverseY",                   Block::ReverseY + 0x10,      s_offOnSymbols},
    {"TestPattern",                Block::TestPattern + 0x1C,   s_patternSymbols},
    {"TestImageSelector",          Block::TestPattern + 0x1C,   s_patternSymbols},
    {"TLParamsLocked",             Reg::TlParamsLocked,         {}},
};

/// A command and what it writes.
struct ForeignCommand {
    const char *node;
    std::uint64_t address;
    std::uint32_t value;
};
inline constexpr ForeignCommand s_foreignCommands[] = {
    {"AcquisitionStart",  Reg::AcquisitionStart,              1},
    {"AcquisitionStop",   Block::AcquisitionCommand + 0x1C,   AcquisitionCommand::Stop},
    {"AcquisitionAbort",  Reg::AcquisitionAbort,              1},
    {"TriggerSoftware",   Block::SoftwareTrigger + 0x1C,      SoftwareTriggerValue::Impulse},
    {"TimestampLatch",    Reg::TimestampLatch,                1},
    {"TestEventGenerate", Reg::EiTestControl,                 1},
};

/// In the order of EventKind.
inline constexpr const char *s_eventNames[] = {
    "ExposureStart", "ExposureEnd", "FrameStart", "FrameEnd", "AcquisitionStart", "AcquisitionEnd", "Line0RisingEdge",
    "Test", "FrameLost",
};
// clang-format on

class ForeignNodes;

/// The engine's format behind a symbol or a PFNC code; none for one that it does not paint.
struct ForeignFormat {
    const PixelFormat *unpacked;
    Packing packing = Packing::None;
};
std::optional<ForeignFormat> FormatOf(std::string_view symbol, std::optional<std::int64_t> code);

/// The name that the description has for the number.
const char *NodeOf(const ForeignNodes &nodes, const ForeignNumber &row);
/// Of a node whose unit is none, it is µs.
double MicrosecondsOf(const ForeignNodes &nodes, const char *node);
/// Raw values of the register for one unit of the node.
double FactorOf(const ForeignNodes &nodes, const ForeignNumber &row, const char *node);
/// Whole numbers of unknown meaning, as many gains are: their range is the engine's.
bool IsRaw(const ForeignNodes &nodes, const ForeignNumber &row, const char *node);

} // namespace Orvi::Vcam
