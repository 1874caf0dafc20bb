#pragma once
// Names of register values: the vocabulary of the control registers. Names, order and duplicates are frozen, odd
// spellings included: other programs compare against them. Each file that includes this has tables of its own.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace Orvi::RegMapKX {

/// A register value and its name.
struct RegisterValue {
    uint32_t uiValue;
    const char *pszName;
};

/// The first row with this value, or null.
constexpr const RegisterValue *FindByValue(std::span<const RegisterValue> table, uint32_t uiValue)
{
    const auto row = std::ranges::find(table, uiValue, &RegisterValue::uiValue);
    return row == table.end() ? nullptr : &*row;
}

/// The first row with this name, or null.
constexpr const RegisterValue *FindByName(std::span<const RegisterValue> table, std::string_view name)
{
    const auto row = std::ranges::find_if(table, [&](const RegisterValue &value) { return value.pszName == name; });
    return row == table.end() ? nullptr : &*row;
}

// clang-format off

// 32 rows from "<prefix>0<suffix>" to "<prefix>31<suffix>".
// NOLINTNEXTLINE(bugprone-macro-parentheses): literals are joined
#define REGV_ROW(base, prefix, number, suffix) {(base) + (number), prefix #number suffix}
#define REGV_ROWS_32(base, prefix, suffix)                                                  \
    REGV_ROW(base, prefix, 0, suffix),  REGV_ROW(base, prefix, 1, suffix),                  \
    REGV_ROW(base, prefix, 2, suffix),  REGV_ROW(base, prefix, 3, suffix),                  \
    REGV_ROW(base, prefix, 4, suffix),  REGV_ROW(base, prefix, 5, suffix),                  \
    REGV_ROW(base, prefix, 6, suffix),  REGV_ROW(base, prefix, 7, suffix),                  \
    REGV_ROW(base, prefix, 8, suffix),  REGV_ROW(base, prefix, 9, suffix),                  \
    REGV_ROW(base, prefix, 10, suffix), REGV_ROW(base, prefix, 11, suffix),                 \
    REGV_ROW(base, prefix, 12, suffix), REGV_ROW(base, prefix, 13, suffix),                 \
    REGV_ROW(base, prefix, 14, suffix), REGV_ROW(base, prefix, 15, suffix),                 \
    REGV_ROW(base, prefix, 16, suffix), REGV_ROW(base, prefix, 17, suffix),                 \
    REGV_ROW(base, prefix, 18, suffix), REGV_ROW(base, prefix, 19, suffix),                 \
    REGV_ROW(base, prefix, 20, suffix), REGV_ROW(base, prefix, 21, suffix),                 \
    REGV_ROW(base, prefix, 22, suffix), REGV_ROW(base, prefix, 23, suffix),                 \
    REGV_ROW(base, prefix, 24, suffix), REGV_ROW(base, prefix, 25, suffix),                 \
    REGV_ROW(base, prefix, 26, suffix), REGV_ROW(base, prefix, 27, suffix),                 \
    REGV_ROW(base, prefix, 28, suffix), REGV_ROW(base, prefix, 29, suffix),                 \
    REGV_ROW(base, prefix, 30, suffix), REGV_ROW(base, prefix, 31, suffix)

// Control modes of the scaled features, written to a block's mode word. They stand in no table.
constexpr RegisterValue g_sREGV_CtrlMode_NoSpecify = {0x0, "NoSpecify"};
constexpr RegisterValue g_sREGV_CtrlMode_Manual    = {0x1, "Manual"};
constexpr RegisterValue g_sREGV_CtrlMode_Auto      = {0x2, "Auto"};
constexpr RegisterValue g_sREGV_CtrlMode_AutoOnce  = {0x3, "AutoOnce"};
constexpr RegisterValue g_sREGV_CtrlMode_Default   = {0x4, "Default"};

// Device and interfaces
constexpr RegisterValue g_saVAL_Endian[]    = {{0x0, "BigEndian"}, {0xFFFFFFFF, "LittleEndian"}};
constexpr RegisterValue g_saVAL_GFType[]    = {{0x0, "XML"}, {0x400, "ZIP"}};
constexpr RegisterValue g_saVAL_U3VCPCAPA[] = {{0x1, "SIRMAvailable"}, {0x2, "EIRMAvailable"}, {0x4, "IIDC2Available"}};
constexpr RegisterValue g_saVAL_USBSpeed[]  = {{0x1, "LowSpeed"}, {0x2, "FullSpeed"}, {0x4, "HighwSpeed"}, {0x8, "SuperSpeed"}};
constexpr RegisterValue g_saVAL_Align_Payload[] = {
    {0x0000000, "Align00001"}, {0x1000000, "Align00002"}, {0x2000000, "Align00004"}, {0x3000000, "Align00008"},
    {0x4000000, "Align00016"}, {0x5000000, "Align00032"}, {0x6000000, "Align00064"}, {0x7000000, "Align00128"},
    {0x8000000, "Align00256"}, {0x9000000, "Align00512"}, {0xA000000, "Align01024"}, {0xB000000, "Align02048"},
    {0xC000000, "Align04096"}, {0xD000000, "Align08192"}, {0xE000000, "Align16384"}, {0xF000000, "Align32768"},
};
// Both rows of each carry 0.
constexpr RegisterValue g_saVAL_SIControl[] = {{0x0, "DisableStream"}, {0x0, "EnableStream"}};
constexpr RegisterValue g_saVAL_EIControl[] = {{0x0, "DisableEvent"}, {0x0, "EnableEvent"}};
constexpr RegisterValue g_saVAL_OnOff[]     = {{0x0, "Off"}, {0x1, "On"}};
constexpr RegisterValue g_saVAL_DevReset[]  = {{0x0, "Off"}, {0x1, "Reset"}};

// Image format
constexpr RegisterValue g_saVAL_FormatSel[]   = {{0x0, "Format0"}, {0x1, "Format1"}, {0x2, "Format2"}};
constexpr RegisterValue g_saVAL_ApplyImgFmt[] = {{0x0, "Done"}, {0x1, "Apply"}, {0x8, "Changed"}, {0x10, "Error"}};
constexpr RegisterValue g_saVAL_PixelEndian[] = {{0x0, "BigEndian"}, {0x1, "LittleEndian"}};
constexpr RegisterValue g_saVAL_PixelCoding[] = {
    {0x00, "Mono"},         {0x01, "MonoSigned"},    {0x02, "MonoPacked"},
    {0x20, "RGB"},          {0x21, "RGBSigned"},     {0x22, "RGBPacked"},
    {0x40, "Deplicated64"}, {0x42, "YUV411Packed"},
    {0x40, "Deplicated72"}, {0x4A, "YUV422Packed"},  {0x52, "YUV444Packed"},
    {0x60, "BayerGR"},      {0x62, "BayerGRPacked"},
    {0x63, "BayerRG"},      {0x65, "BayerRGPacked"},
    {0x66, "BayerGB"},      {0x68, "BayerGBPacked"},
    {0x69, "BayerBG"},      {0x6B, "BayerBGPacked"},
};
constexpr RegisterValue g_saVAL_PixelSize[] = {
    {0x08, "Bpp8"},  {0x0A, "Bpp10"}, {0x0C, "Bpp12"}, {0x10, "Bpp16"},
    {0x18, "Bpp24"}, {0x1E, "Bpp30"}, {0x24, "Bpp36"}, {0x30, "Bpp48"},
};
constexpr RegisterValue g_saVAL_STdFormat[] = {
    {0x00, "VGA_Mono8"},     {0x01, "VGA_RGB8Packed"},     {0x02, "VGA_Yuv422Packed"},
    {0x08, "XGA_Mono8"},     {0x09, "XGA_RGB8Packed"},     {0x0A, "XGA_Yuv422Packed"},
    {0x10, "HD720p_Mono8"},  {0x11, "HD720p_RGB8Packed"},  {0x12, "HD720p_Yuv422Packed"},
    {0x18, "SXGA_Mono8"},    {0x19, "SXGA_RGB8Packed"},    {0x1A, "SXGA_Yuv422Packed"},
    {0x28, "HD1080p_Mono8"}, {0x29, "HD1080p_RGB8Packed"}, {0x2A, "HD1080p_Yuv422Packed"},
};
constexpr RegisterValue g_saVAL_TestPtn[] = {
    {0x0, "Off"},    {0x1, "Black"}, {0x2, "White"},     {0x3, "Gray_A"},
    {0x4, "Gray_B"}, {0x5, "Ramp"},  {0x6, "GrayScale"}, {0x7, "ColorBar"},
};
constexpr RegisterValue g_saVAL_Reverse[] = {{0x0, "Normal"}, {0x1, "Reverse"}};

// Acquisition and trigger
constexpr RegisterValue g_saVAL_StdFrmRate[] = {
    {0x0, "1.875fps"}, {0x1, "3.75fps"}, {0x2, "7.5fps"},  {0x3, "15fps"},
    {0x4, "30fps"},    {0x5, "60fps"},   {0x6, "120fps"},  {0x7, "240fps"},
};
constexpr RegisterValue g_saVAL_AcquisCmd[] = {
    {0x0, "Abort"}, {0x1, "Stop"}, {0x8, "Continuous"}, {0x9, "MultiFrame"}, {0xA, "ImageBufferRead"}, {0x12, "ReTransmit"},
};
constexpr RegisterValue g_saVAL_TrigSeq[]  = {{0x0, "TriggerSequence0"}, {0x1, "TriggerSequence1"}, {0x6, "TriggerSequence6"}};
constexpr RegisterValue g_saVAL_TrigSrc[]  = {REGV_ROWS_32(0x0, "Line", ""), {0x40, "Software"}};
constexpr RegisterValue g_saVAL_SoftTrig[] = {{0x0, "Inactive"}, {0x1, "Active"}, {0x8, "Impulse"}};
constexpr RegisterValue g_saVAL_FrmSync[]  = {{0x0, "Off"}, {0x1, "Bus"}, REGV_ROWS_32(0x20, "Line", "")};

// Digital lines and timers
constexpr RegisterValue g_saVAL_IOLineSel[] = {REGV_ROWS_32(0x0, "IOLine", "")};
constexpr RegisterValue g_saVAL_IOLineSrc[] = {
    {0x00, "Off"}, {0x10, "HD"}, {0x11, "VD"}, {0x20, "UserOutput"},
    REGV_ROWS_32(0x40, "Timer", "Active"),
    {0x62, "AcquisitionTriggerWai"}, {0x63, "AcquisitionActive"}, {0x6A, "FrameTriggerWait"}, {0x6B, "FrameActive"},
    {0x73, "FrameTransferActive"},   {0x7B, "ExposureActive"},
};
constexpr RegisterValue g_saVAL_TimerSel[] = {REGV_ROWS_32(0x0, "Timer", "")};
constexpr RegisterValue g_saVAL_TmTrgSrc[] = {
    {0x00, "Off"},
    REGV_ROWS_32(0x20, "Line", ""),
    {0x60, "AcquisitionTrigger"}, {0x64, "AcquisitionEnd"},
    {0x68, "FrameTrigger"},       {0x6C, "FrameStart"},     {0x6D, "FrameEnd"},
    {0x7C, "ExcposureStart"},     {0x7D, "ExposureEnd"},
};

// Look-up table and user sets
constexpr RegisterValue g_saVAL_LUTBankSel[] = {REGV_ROWS_32(0x0, "Bank", "")};
constexpr RegisterValue g_saVAL_LUTValAll[]  = {REGV_ROWS_32(0x0, "Preset", "")};
// "Userset31" is defined, but the table ends before it.
constexpr RegisterValue g_sREGV_UsersetSel_Userset31 = {0x1F, "Userset31"};
constexpr RegisterValue g_saVAL_UsersetSel[] = {
    {0x00, "UsersetDefault"},
    {0x00, "Userset0"},  {0x01, "Userset1"},  {0x02, "Userset2"},  {0x03, "Userset3"},  {0x04, "Userset4"},
    {0x05, "Userset5"},  {0x06, "Userset6"},  {0x07, "Userset7"},  {0x08, "Userset8"},  {0x09, "Userset9"},
    {0x0A, "Userset10"}, {0x0B, "Userset11"}, {0x0C, "Userset12"}, {0x0D, "Userset13"}, {0x0E, "Userset14"},
    {0x0F, "Userset15"}, {0x10, "Userset16"}, {0x11, "Userset17"}, {0x12, "Userset18"}, {0x13, "Userset19"},
    {0x14, "Userset20"}, {0x15, "Userset21"}, {0x16, "Userset22"}, {0x17, "Userset23"}, {0x18, "Userset24"},
    {0x19, "Userset25"}, {0x1A, "Userset26"}, {0x1B, "Userset27"}, {0x1C, "Userset28"}, {0x1D, "Userset29"},
    {0x1E, "Userset30"},
};
constexpr RegisterValue g_saVAL_UsersetCmd[] = {{0x0, "Done"}, {0x8, "Load"}, {0x9, "Save"}};

// Events
constexpr RegisterValue g_saVAL_EventAcquis[] = {
    {0x0, "Nothing"}, {0x1, "Trigger"}, {0x2, "Start"}, {0x4, "End"},
    {0x100, "TransferStart"}, {0x200, "TransferEnd"}, {0x400, "Error"},
};
constexpr RegisterValue g_saVAL_EventFrame[] = {
    {0x0, "Nothing"}, {0x1, "FrameTrigger"}, {0x2, "TriggerStart"}, {0x4, "TriggerWait"}, {0x8, "FrameStart"},
    {0x10, "FrameEnd"}, {0x10000, "TransferStart"}, {0x20000, "TransferEnd"},
};
constexpr RegisterValue g_saVAL_EventExposure[] = {{0x0, "Nothing"}, {0x1, "ExposureStart"}, {0x2, "ExposureEnd"}};

#undef REGV_ROWS_32
#undef REGV_ROW

// clang-format on

static_assert(std::size(g_saVAL_UsersetSel) == 32);

} // namespace Orvi::RegMapKX
