// The vocabulary of the control registers.

#include "features/RegisterValues.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace Orvi::RegMapKX {

/// "0x0 Off, 0x1 On"
std::string Text(std::span<const RegisterValue> table)
{
    std::string text;
    for (const RegisterValue &row : table) {
        char value[16];
        std::snprintf(value, sizeof value, "0x%X ", row.uiValue);
        text += (text.empty() ? "" : ", ") + std::string(value) + row.pszName;
    }
    return text;
}

/// The text of rows from "<prefix>0<suffix>" on, whose values count up from base.
std::string Numbered(uint32_t base, const std::string &prefix, const std::string &suffix = "", uint32_t count = 32)
{
    std::vector<std::string> names(count);
    std::vector<RegisterValue> rows;
    for (uint32_t i = 0; i < count; ++i) {
        names[i] = prefix + std::to_string(i) + suffix;
        rows.push_back({base + i, names[i].c_str()});
    }
    return Text(rows);
}

struct TableRow {
    std::span<const RegisterValue> table;
    std::string text;
};

TEST(RegisterValuesTest, TablesHaveTheirRowsInOrder)
{
    const TableRow rows[] = {
        // clang-format off
        {g_saVAL_Endian,    "0x0 BigEndian, 0xFFFFFFFF LittleEndian"},
        {g_saVAL_GFType,    "0x0 XML, 0x400 ZIP"},
        {g_saVAL_U3VCPCAPA, "0x1 SIRMAvailable, 0x2 EIRMAvailable, 0x4 IIDC2Available"},
        {g_saVAL_USBSpeed,  "0x1 LowSpeed, 0x2 FullSpeed, 0x4 HighwSpeed, 0x8 SuperSpeed"},
        {g_saVAL_Align_Payload,
         "0x0 Align00001, 0x1000000 Align00002, 0x2000000 Align00004, 0x3000000 Align00008, 0x4000000 Align00016, "
         "0x5000000 Align00032, 0x6000000 Align00064, 0x7000000 Align00128, 0x8000000 Align00256, 0x9000000 Align00512, "
         "0xA000000 Align01024, 0xB000000 Align02048, 0xC000000 Align04096, 0xD000000 Align08192, 0xE000000 Align16384, "
         "0xF000000 Align32768"},
        {g_saVAL_SIControl,   "0x0 DisableStream, 0x0 EnableStream"},
        {g_saVAL_EIControl,   "0x0 DisableEvent, 0x0 EnableEvent"},
        {g_saVAL_OnOff,       "0x0 Off, 0x1 On"},
        {g_saVAL_DevReset,    "0x0 Off, 0x1 Reset"},
        {g_saVAL_FormatSel,   "0x0 Format0, 0x1 Format1, 0x2 Format2"},
        {g_saVAL_ApplyImgFmt, "0x0 Done, 0x1 Apply, 0x8 Changed, 0x10 Error"},
        {g_saVAL_PixelEndian, "0x0 BigEndian, 0x1 LittleEndian"},
        {g_saVAL_PixelCoding,
         "0x0 Mono, 0x1 MonoSigned, 0x2 MonoPacked, 0x20 RGB, 0x21 RGBSigned, 0x22 RGBPacked, 0x40 Deplicated64, "
         "0x42 YUV411Packed, 0x40 Deplicated72, 0x4A YUV422Packed, 0x52 YUV444Packed, 0x60 BayerGR, "
         "0x62 BayerGRPacked, 0x63 BayerRG, 0x65 BayerRGPacked, 0x66 BayerGB, 0x68 BayerGBPacked, 0x69 BayerBG, "
         "0x6B BayerBGPacked"},
        {g_saVAL_PixelSize,
         "0x8 Bpp8, 0xA Bpp10, 0xC Bpp12, 0x10 Bpp16, 0x18 Bpp24, 0x1E Bpp30, 0x24 Bpp36, 0x30 Bpp48"},
        {g_saVAL_STdFormat,
         "0x0 VGA_Mono8, 0x1 VGA_RGB8Packed, 0x2 VGA_Yuv422Packed, 0x8 XGA_Mono8, 0x9 XGA_RGB8Packed, "
         "0xA XGA_Yuv422Packed, 0x10 HD720p_Mono8, 0x11 HD720p_RGB8Packed, 0x12 HD720p_Yuv422Packed, "
         "0x18 SXGA_Mono8, 0x19 SXGA_RGB8Packed, 0x1A SXGA_Yuv422Packed, 0x28 HD1080p_Mono8, "
         "0x29 HD1080p_RGB8Packed, 0x2A HD1080p_Yuv422Packed"},
        {g_saVAL_StdFrmRate,
         "0x0 1.875fps, 0x1 3.75fps, 0x2 7.5fps, 0x3 15fps, 0x4 30fps, 0x5 60fps, 0x6 120fps, 0x7 240fps"},
        {g_saVAL_AcquisCmd,
         "0x0 Abort, 0x1 Stop, 0x8 Continuous, 0x9 MultiFrame, 0xA ImageBufferRead, 0x12 ReTransmit"},
        {g_saVAL_TrigSeq,   "0x0 TriggerSequence0, 0x1 TriggerSequence1, 0x6 TriggerSequence6"},
        {g_saVAL_TrigSrc,   Numbered(0, "Line") + ", 0x40 Software"},
        {g_saVAL_SoftTrig,  "0x0 Inactive, 0x1 Active, 0x8 Impulse"},
        {g_saVAL_IOLineSel, Numbered(0, "IOLine")},
        {g_saVAL_IOLineSrc,
         "0x0 Off, 0x10 HD, 0x11 VD, 0x20 UserOutput, " + Numbered(0x40, "Timer", "Active") +
         ", 0x62 AcquisitionTriggerWai, 0x63 AcquisitionActive, 0x6A FrameTriggerWait, 0x6B FrameActive, "
         "0x73 FrameTransferActive, 0x7B ExposureActive"},
        {g_saVAL_TimerSel, Numbered(0, "Timer")},
        {g_saVAL_TmTrgSrc,
         "0x0 Off, " + Numbered(0x20, "Line") +
         ", 0x60 AcquisitionTrigger, 0x64 AcquisitionEnd, 0x68 FrameTrigger, 0x6C FrameStart, 0x6D FrameEnd, "
         "0x7C ExcposureStart, 0x7D ExposureEnd"},
        {g_saVAL_LUTBankSel, Numbered(0, "Bank")},
        {g_saVAL_LUTValAll,  Numbered(0, "Preset")},
        {g_saVAL_UsersetSel, "0x0 UsersetDefault, " + Numbered(0, "Userset", "", 31)},
        {g_saVAL_UsersetCmd, "0x0 Done, 0x8 Load, 0x9 Save"},
        {g_saVAL_FrmSync,    "0x0 Off, 0x1 Bus, " + Numbered(0x20, "Line")},
        {g_saVAL_TestPtn,
         "0x0 Off, 0x1 Black, 0x2 White, 0x3 Gray_A, 0x4 Gray_B, 0x5 Ramp, 0x6 GrayScale, 0x7 ColorBar"},
        {g_saVAL_Reverse, "0x0 Normal, 0x1 Reverse"},
        {g_saVAL_EventAcquis,
         "0x0 Nothing, 0x1 Trigger, 0x2 Start, 0x4 End, 0x100 TransferStart, 0x200 TransferEnd, 0x400 Error"},
        {g_saVAL_EventFrame,
         "0x0 Nothing, 0x1 FrameTrigger, 0x2 TriggerStart, 0x4 TriggerWait, 0x8 FrameStart, 0x10 FrameEnd, "
         "0x10000 TransferStart, 0x20000 TransferEnd"},
        {g_saVAL_EventExposure, "0x0 Nothing, 0x1 ExposureStart, 0x2 ExposureEnd"},
        // clang-format on
    };
    for (const TableRow &row : rows)
        EXPECT_EQ(Text(row.table), row.text);
}

TEST(RegisterValuesTest, FirstMatchWins)
{
    EXPECT_STREQ(FindByValue(g_saVAL_Endian, 0xFFFFFFFF)->pszName, "LittleEndian");
    EXPECT_STREQ(FindByValue(g_saVAL_PixelCoding, 0x40)->pszName, "Deplicated64");
    EXPECT_EQ(FindByName(g_saVAL_PixelCoding, "Deplicated72")->uiValue, 0x40u);
    EXPECT_STREQ(FindByValue(g_saVAL_SIControl, 0)->pszName, "DisableStream");
    EXPECT_STREQ(FindByValue(g_saVAL_EIControl, 0)->pszName, "DisableEvent");
    EXPECT_STREQ(FindByValue(g_saVAL_UsersetSel, 0)->pszName, "UsersetDefault");
    EXPECT_EQ(FindByValue(g_saVAL_UsersetSel, 31), nullptr);
    EXPECT_EQ(FindByName(g_saVAL_UsersetSel, "Userset31"), nullptr);
    EXPECT_EQ(g_sREGV_UsersetSel_Userset31.uiValue, 31u);
    EXPECT_STREQ(g_sREGV_UsersetSel_Userset31.pszName, "Userset31");
    EXPECT_EQ(FindByName(g_saVAL_OnOff, "on"), nullptr);
}

TEST(RegisterValuesTest, ControlModes)
{
    const RegisterValue modes[] = {g_sREGV_CtrlMode_NoSpecify, g_sREGV_CtrlMode_Manual, g_sREGV_CtrlMode_Auto,
                                   g_sREGV_CtrlMode_AutoOnce, g_sREGV_CtrlMode_Default};
    const char *names[] = {"NoSpecify", "Manual", "Auto", "AutoOnce", "Default"};
    for (uint32_t mode = 0; mode < 5; ++mode) {
        EXPECT_EQ(modes[mode].uiValue, mode);
        EXPECT_STREQ(modes[mode].pszName, names[mode]);
    }
}

} // namespace Orvi::RegMapKX
