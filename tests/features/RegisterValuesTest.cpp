// The vocabulary of the control registers.

#include "features/RegisterValues.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace Orvi::RegMapKX {

struct TableRow {
    std::span<const RegisterValue> table;
    std::size_t rows;
    uint32_t firstValue;
    const char *firstName;
    uint32_t lastValue;
    const char *lastName;
};

TEST(RegisterValuesTest, TablesHaveTheirRowsInOrder)
{
    const TableRow rows[] = {
        // clang-format off
        {g_saVAL_Endian,        2,  0, "BigEndian",       0xFFFFFFFF, "LittleEndian"},
        {g_saVAL_GFType,        2,  0, "XML",             0x400, "ZIP"},
        {g_saVAL_U3VCPCAPA,     3,  1, "SIRMAvailable",   4, "IIDC2Available"},
        {g_saVAL_USBSpeed,      4,  1, "LowSpeed",        8, "SuperSpeed"},
        {g_saVAL_Align_Payload, 16, 0, "Align00001",      0xF000000, "Align32768"},
        {g_saVAL_SIControl,     2,  0, "DisableStream",   0, "EnableStream"},
        {g_saVAL_EIControl,     2,  0, "DisableEvent",    0, "EnableEvent"},
        {g_saVAL_OnOff,         2,  0, "Off",             1, "On"},
        {g_saVAL_DevReset,      2,  0, "Off",             1, "Reset"},
        {g_saVAL_FormatSel,     3,  0, "Format0",         2, "Format2"},
        {g_saVAL_ApplyImgFmt,   4,  0, "Done",            0x10, "Error"},
        {g_saVAL_PixelEndian,   2,  0, "BigEndian",       1, "LittleEndian"},
        {g_saVAL_PixelCoding,   19, 0, "Mono",            0x6B, "BayerBGPacked"},
        {g_saVAL_PixelSize,     8,  8, "Bpp8",            0x30, "Bpp48"},
        {g_saVAL_STdFormat,     15, 0, "VGA_Mono8",       42, "HD1080p_Yuv422Packed"},
        {g_saVAL_StdFrmRate,    8,  0, "1.875fps",        7, "240fps"},
        {g_saVAL_AcquisCmd,     6,  0, "Abort",           0x12, "ReTransmit"},
        {g_saVAL_TrigSeq,       3,  0, "TriggerSequence0", 6, "TriggerSequence6"},
        {g_saVAL_TrigSrc,       33, 0, "Line0",           0x40, "Software"},
        {g_saVAL_SoftTrig,      3,  0, "Inactive",        8, "Impulse"},
        {g_saVAL_IOLineSel,     32, 0, "IOLine0",         31, "IOLine31"},
        {g_saVAL_IOLineSrc,     42, 0, "Off",             0x7B, "ExposureActive"},
        {g_saVAL_TimerSel,      32, 0, "Timer0",          31, "Timer31"},
        {g_saVAL_TmTrgSrc,      40, 0, "Off",             0x7D, "ExposureEnd"},
        {g_saVAL_LUTBankSel,    32, 0, "Bank0",           31, "Bank31"},
        {g_saVAL_LUTValAll,     32, 0, "Preset0",         31, "Preset31"},
        {g_saVAL_UsersetSel,    32, 0, "UsersetDefault",  30, "Userset30"},
        {g_saVAL_UsersetCmd,    3,  0, "Done",            9, "Save"},
        {g_saVAL_FrmSync,       34, 0, "Off",             0x3F, "Line31"},
        {g_saVAL_TestPtn,       8,  0, "Off",             7, "ColorBar"},
        {g_saVAL_Reverse,       2,  0, "Normal",          1, "Reverse"},
        {g_saVAL_EventAcquis,   7,  0, "Nothing",         0x400, "Error"},
        {g_saVAL_EventFrame,    8,  0, "Nothing",         0x20000, "TransferEnd"},
        {g_saVAL_EventExposure, 3,  0, "Nothing",         2, "ExposureEnd"},
        // clang-format on
    };
    for (const TableRow &row : rows) {
        SCOPED_TRACE(row.lastName);
        ASSERT_EQ(row.table.size(), row.rows);
        EXPECT_EQ(row.table.front().uiValue, row.firstValue);
        EXPECT_STREQ(row.table.front().pszName, row.firstName);
        EXPECT_EQ(row.table.back().uiValue, row.lastValue);
        EXPECT_STREQ(row.table.back().pszName, row.lastName);
        std::set<std::string> names;
        for (const RegisterValue &value : row.table)
            EXPECT_TRUE(names.insert(value.pszName).second) << value.pszName;
    }
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
    EXPECT_EQ(FindByName(g_saVAL_OnOff, "on"), nullptr);
}

TEST(RegisterValuesTest, NumberedRowsFollowTheirNumbers)
{
    for (uint32_t i = 0; i < 32; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_EQ(FindByValue(g_saVAL_TrigSrc, i)->pszName, "Line" + number);
        EXPECT_EQ(FindByValue(g_saVAL_IOLineSrc, 0x40 + i)->pszName, "Timer" + number + "Active");
        EXPECT_EQ(FindByValue(g_saVAL_TmTrgSrc, 0x20 + i)->pszName, "Line" + number);
        EXPECT_EQ(FindByValue(g_saVAL_FrmSync, 0x20 + i)->pszName, "Line" + number);
        EXPECT_EQ(FindByName(g_saVAL_LUTValAll, "Preset" + number)->uiValue, i);
        if (i < 31) {
            EXPECT_EQ(FindByName(g_saVAL_UsersetSel, "Userset" + number)->uiValue, i);
        }
        if (i < 16) {
            char name[16];
            std::snprintf(name, sizeof name, "Align%05u", 1u << i);
            EXPECT_EQ(FindByName(g_saVAL_Align_Payload, name)->uiValue, i * 0x1000000);
        }
    }
}

TEST(RegisterValuesTest, OddSpellingsAreKept)
{
    EXPECT_EQ(FindByName(g_saVAL_USBSpeed, "HighwSpeed")->uiValue, 4u);
    EXPECT_EQ(FindByName(g_saVAL_IOLineSrc, "AcquisitionTriggerWai")->uiValue, 0x62u);
    EXPECT_EQ(FindByName(g_saVAL_TmTrgSrc, "ExcposureStart")->uiValue, 0x7Cu);
    EXPECT_STREQ(FindByValue(g_saVAL_Endian, 0xFFFFFFFF)->pszName, "LittleEndian");
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
