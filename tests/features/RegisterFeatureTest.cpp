// Flags, lines, commands and what is selected first, on the register road.

#include "tests/features/FeatureTest.h"

namespace Orvi::Testing {

class RegisterFeatureTest : public FeatureTest {
  protected:
    RegisterFeatureTest() { SetStreaming(false); }

    template <class Call>
    void ExpectRefusals(uint64_t block, const RefusedInquiry (&refusals)[6], const Call &call)
    {
        for (const RefusedInquiry &refused : refusals) {
            SetInquiry(block, refused.inquiry);
            const auto before = stub.registers;
            EXPECT_EQ(call(), refused.status) << refused.inquiry;
            EXPECT_EQ(stub.registers, before);
        }
    }
};

TEST_F(RegisterFeatureTest, WhiteBalanceModeIsWrittenButReadFromTheNode)
{
    SetBlock(0x205060, {allAccess | 1u << 1 | 1u << 3, 0, 0});
    EXPECT_EQ(SetCamBalanceWhiteAuto(hCamera, CAM_BALANCE_WHITE_AUTO_ONCE), 0u);
    EXPECT_EQ(stub.registers[0x205068], 3u);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x205060, 1), WriteOf(0x205068)}));
    EXPECT_EQ(SetCamBalanceWhiteAuto(hCamera, CAM_BALANCE_WHITE_AUTO_OFF), 0u);
    SetInquiry(0x205060, allAccess | 1u << 1);
    EXPECT_EQ(SetCamBalanceWhiteAuto(hCamera, CAM_BALANCE_WHITE_AUTO_ONCE), 0x808u);
    for (const uint32_t mode : {0u, 2u, 4u, ~0u})
        EXPECT_EQ(SetCamBalanceWhiteAuto(hCamera, static_cast<CAM_BALANCE_WHITE_AUTO_TYPE>(mode)), 0xDu);
    ExpectRefusals(0x205060, writeRefusals,
                   [&] { return SetCamBalanceWhiteAuto(hCamera, CAM_BALANCE_WHITE_AUTO_OFF); });
    auto mode = static_cast<CAM_BALANCE_WHITE_AUTO_TYPE>(77);
    stub.nodes["BalanceWhiteAuto"].text = "AutoOnce";
    EXPECT_EQ(GetCamBalanceWhiteAuto(hCamera, &mode), 0u);
    EXPECT_EQ(mode, CAM_BALANCE_WHITE_AUTO_ONCE);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0, "GetCamBalanceWhiteAuto, *peBalanceWhiteAuto=3"));
    stub.nodes["BalanceWhiteAuto"].text = "Continuous";
    EXPECT_EQ(GetCamBalanceWhiteAuto(hCamera, &mode), 0xFFFFFFFFu);
}

struct FlagRow {
    const char *name;
    uint64_t block;
    CAM_API_STATUS (*get)(CAM_HANDLE, bool *);
    CAM_API_STATUS (*set)(CAM_HANDLE, bool);
};

class FlagFeatureTest : public RegisterFeatureTest, public ::testing::WithParamInterface<FlagRow> {
  protected:
    const FlagRow &row = GetParam();
};
INSTANTIATE_TEST_SUITE_P(Features, FlagFeatureTest,
                         ::testing::Values(FlagRow{"ReverseX", 0x21F1C0, GetCamReverseX, SetCamReverseX},
                                           FlagRow{"ReverseY", 0x21F1E0, GetCamReverseY, SetCamReverseY}),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(FlagFeatureTest, IsTheFifthWord)
{
    SetBlock(row.block, {allAccess, 0, 0, 0, 0});
    bool flag = true;
    EXPECT_EQ(row.get(hCamera, &flag), 0u);
    EXPECT_FALSE(flag);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 5)});
    for (const uint32_t word : {1u, 2u, 0x80000000u}) {
        stub.registers[row.block + 0x10] = word;
        flag = false;
        EXPECT_EQ(row.get(hCamera, &flag), 0u);
        EXPECT_TRUE(flag) << word;
    }
    const std::string name = row.name;
    EXPECT_EQ(TakeFrame().back(), ExitLine(0, "GetCam" + name + ", *pbValue=1"));
    Forget();
    for (const bool wanted : {true, false}) {
        EXPECT_EQ(row.set(hCamera, wanted), 0u);
        EXPECT_EQ(stub.registers[row.block + 0x10], wanted ? 1u : 0u);
        EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 1), WriteOf(row.block + 0x10)}));
        EXPECT_EQ(TakeFrame(), (Lines{EnterLine("SetCam" + name + ", hCam=0x11, bValue=" + (wanted ? "1" : "0")),
                                      ExitLine(0, "SetCam" + name)}));
    }
    bool untouched = true;
    ExpectRefusals(row.block, readRefusals, [&] { return row.get(hCamera, &untouched); });
    EXPECT_TRUE(untouched);
    ExpectRefusals(row.block, writeRefusals, [&] { return row.set(hCamera, true); });
}

TEST_P(FlagFeatureTest, IsWrittenWhileStreaming)
{
    SetBlock(row.block, {allAccess, 0, 0, 0, 0});
    SetStreaming(true);
    EXPECT_EQ(row.set(hCamera, true), 0u);
    EXPECT_EQ(stub.registers[row.block + 0x10], 1u);
}

TEST_F(RegisterFeatureTest, TriggerModeIsAChoiceReadByItsLowestBit)
{
    SetBlock(0x207020, {allAccess, 0, 0, 3, 0, 0, 0, 2});
    bool mode = true;
    EXPECT_EQ(GetCamTriggerMode(hCamera, &mode), 0u);
    EXPECT_FALSE(mode) << "bit 1 does not count";
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x207020, 1), ReadOf(0x20703C, 1)}));
    EXPECT_EQ(SetCamTriggerMode(hCamera, true), 0u);
    EXPECT_EQ(stub.registers[0x20703C], 1u);
    EXPECT_EQ(GetCamTriggerMode(hCamera, &mode), 0u);
    EXPECT_TRUE(mode);
    stub.registers[0x20702C] = 1;
    EXPECT_EQ(SetCamTriggerMode(hCamera, true), 0x808u);
    EXPECT_EQ(SetCamTriggerMode(hCamera, false), 0u);
    ExpectRefusals(0x207020, readRefusals, [&] { return GetCamTriggerMode(hCamera, &mode); });
    ExpectRefusals(0x207020, writeRefusals, [&] { return SetCamTriggerMode(hCamera, true); });
}

TEST_F(RegisterFeatureTest, CommandsAreValuesOfABlock)
{
    struct Command {
        uint64_t block;
        uint32_t value;
        CAM_API_STATUS (*execute)(CAM_HANDLE);
        const char *name;
    };
    const Command commands[] = {{0x203020, 0xA, ExecuteCamImageBufferRead, "ExecuteCamImageBufferRead"},
                                {0x2070C0, 8, ExecuteCamSoftwareTrigger, "ExecuteCamSoftwareTrigger"}};
    for (const Command &command : commands) {
        SetBlock(command.block, {allAccess, 0, 0, 1u << command.value, 0, 0, 0, 0});
        Forget();
        EXPECT_EQ(command.execute(hCamera), 0u);
        EXPECT_EQ(stub.registers[command.block + 0x1C], command.value);
        EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(command.block, 7), WriteOf(command.block + 0x1C)}));
        EXPECT_EQ(TakeFrame(),
                  (Lines{EnterLine(std::string(command.name) + ", hCam=0x11"), ExitLine(0, command.name)}));
        stub.registers[command.block + 0xC] = ~(1u << command.value);
        EXPECT_EQ(command.execute(hCamera), 0x808u);
        ExpectRefusals(command.block, writeRefusals, [&] { return command.execute(hCamera); });
    }
}

TEST_F(RegisterFeatureTest, LinesAreOneWord)
{
    struct LinesRow {
        const char *name;
        uint64_t block;
        CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
        CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
    };
    const LinesRow rows[] = {
        {"LineModeAll", 0x209020, GetCamLineModeAll, nullptr},
        {"LineInverterAll", 0x209040, GetCamLineInverterAll, SetCamLineInverterAll},
        {"LineStatusAll", 0x209060, GetCamLineStatusAll, nullptr},
        {"UserOutputValueAll", 0x209080, GetCamUserOutputValueAll, SetCamUserOutputValueAll},
    };
    for (const LinesRow &row : rows) {
        const std::string name = row.name;
        SetBlock(row.block, {allAccess, 0, 0, 7, 0x80000005});
        Forget();
        uint32_t lines = 0;
        EXPECT_EQ(row.get(hCamera, &lines), 0u);
        EXPECT_EQ(lines, 0x80000005u);
        EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 5)});
        EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + ", hCam=0x11"),
                                      ExitLine(0, "GetCam" + name + ", *puiValue=-2147483643")}));
        if (row.set != nullptr) {
            EXPECT_EQ(row.set(hCamera, 0xFFFFFFFF), 0u);
            EXPECT_EQ(stub.registers[row.block + 0x10], 7u) << "lines that the camera lacks are dropped";
            EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 4), WriteOf(row.block + 0x10)}));
            EXPECT_EQ(TakeFrame(),
                      (Lines{EnterLine("SetCam" + name + ", hCam=0x11, uiValue=-1"), ExitLine(0, "SetCam" + name)}));
            EXPECT_EQ(row.set(hCamera, 0xFFFFFFF8), 0u);
            EXPECT_EQ(stub.registers[row.block + 0x10], 0u);
            stub.Script(Stub::Entry::Cam_WriteReg, {0x13});
            EXPECT_EQ(row.set(hCamera, 1), 0x13u);
            ExpectRefusals(row.block, writeRefusals, [&] { return row.set(hCamera, 1); });
        }
        ExpectRefusals(row.block, readRefusals, [&] { return row.get(hCamera, &lines); });
        EXPECT_EQ(lines, 0x80000005u);
        stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
        EXPECT_EQ(row.get(hCamera, &lines), 0x12u);
    }
}

TEST_F(RegisterFeatureTest, LineSourceSelectsTheLineFirst)
{
    SetBlock(0x2090A0, {allAccess, 0, 0, 0xF, 0, 0, 0, 0});
    SetBlock(0x2090C0, {allAccess, 0, 0, 1, 0, 0, 1u << (123 % 32), 17});
    auto source = CAM_LINE_SOURCE_OFF;
    const auto line3 = static_cast<CAM_LINE_SELECTOR_TYPE>(3);
    Forget();
    EXPECT_EQ(GetCamLineSource(hCamera, line3, &source), 0u);
    EXPECT_EQ(source, CAM_LINE_SOURCE_VD);
    EXPECT_EQ(stub.registers[0x2090BC], 3u);
    EXPECT_EQ(TakeAccesses(),
              (Lines{ReadOf(0x2090A0, 7), WriteOf(0x2090BC), ReadOf(0x2090C0, 1), ReadOf(0x2090DC, 1)}));
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCamLineSource, hCam=0x11, eLineSelector=3"),
                                  ExitLine(0, "GetCamLineSource, *peLineSource=17")}));
    EXPECT_EQ(SetCamLineSource(hCamera, CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_EXPOSURE_ACTIVE), 0u);
    EXPECT_EQ(stub.registers[0x2090BC], 2u);
    EXPECT_EQ(stub.registers[0x2090DC], 123u);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x2090A0, 7), WriteOf(0x2090BC), ReadOf(0x2090C0, 7), WriteOf(0x2090DC)}));
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("SetCamLineSource, hCam=0x11, eLineSelector=2, eLineSource=123"),
                                  ExitLine(0, "SetCamLineSource")}));
    EXPECT_EQ(SetCamLineSource(hCamera, CAM_LINE_SELECTOR_LINE0, CAM_LINE_SOURCE_VD), 0x808u);
    // A line that is refused: nothing else is tried.
    Forget();
    EXPECT_EQ(SetCamLineSource(hCamera, static_cast<CAM_LINE_SELECTOR_TYPE>(4), CAM_LINE_SOURCE_OFF), 0x808u);
    EXPECT_EQ(GetCamLineSource(hCamera, static_cast<CAM_LINE_SELECTOR_TYPE>(128), &source), 0xFFFFFFFFu);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x2090A0, 7), ReadOf(0x2090A0, 7)}));
    EXPECT_EQ(source, CAM_LINE_SOURCE_VD);
}

} // namespace Orvi::Testing
