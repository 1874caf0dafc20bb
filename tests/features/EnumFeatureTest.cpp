// Choices, flags, modes and commands on the register road.

#include "tests/features/FeatureTest.h"
#include "tests/features/PlainEnum.h"

namespace Orvi::Testing {

/// Getter and setter with plain words.
struct EnumRow {
    const char *name;
    uint64_t block;
    const char *argument; ///< in the log
    bool refusedWhileStreaming;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

#define ROW(feature, block, argument, refused)                                                                         \
    {                                                                                                                  \
#feature, block, argument, refused, GetPlain < GetCam##feature>, SetPlain < SetCam##feature>                   \
    }
const EnumRow s_enums[] = {
    // clang-format off
    ROW(ImageFormatSelector, 0x202020, "eFormat",             true),
    ROW(ImageBufferMode,     0x203060, "eImageBufferMode",    true),
    ROW(TestPattern,         0x21F120, "eTestPattern",        false),
    ROW(TriggerSequence,     0x207040, "eTriggerSequence",    false),
    ROW(TriggerSource,       0x207060, "eTriggerSource",      false),
    ROW(TimerTriggerSource,  0x21F260, "eTimerTriggerSource", false),
    // clang-format on
};
const EnumRow s_modes[] = {
    // clang-format off
    ROW(AcquisitionFrameRateControl, 0x2030A0, "eAcquisitionFrameRateControl", false),
    ROW(ExposureTimeControl,         0x204020, "eExposureTimeControl",         false),
    ROW(GainAuto,                    0x204060, "eGainAuto",                    false),
    // clang-format on
};
#undef ROW

class EnumRowTest : public FeatureTest, public ::testing::WithParamInterface<EnumRow> {
  protected:
    const EnumRow &row = GetParam();

    EnumRowTest() { SetStreaming(false); }

    uint32_t Get(CAM_API_STATUS expected = 0)
    {
        uint32_t value = 77;
        EXPECT_EQ(row.get(hCamera, &value), expected);
        return value;
    }

    void ExpectRefused(uint32_t value, CAM_API_STATUS status)
    {
        const auto before = stub.registers;
        EXPECT_EQ(row.set(hCamera, value), status) << value;
        EXPECT_EQ(stub.registers, before) << value;
    }

    void ExpectLines(uint32_t value)
    {
        const std::string name = row.name, argument = row.argument;
        Forget();
        Get();
        EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + ", hCam=0x11"),
                                      ExitLine(0, "GetCam" + name + ", *p" + argument + "=" + std::to_string(value))}));
        EXPECT_EQ(row.set(hCamera, value), 0u);
        EXPECT_EQ(TakeFrame(),
                  (Lines{EnterLine("SetCam" + name + ", hCam=0x11, " + argument + "=" + std::to_string(value)),
                         ExitLine(0, "SetCam" + name)}));
        SetInquiry(row.block, 0);
        Get(0x11);
        EXPECT_EQ(TakeFrame().back(), ExitLine(0x11, "GetCam" + name));
        row.set(hCamera, value);
        EXPECT_EQ(TakeFrame().back(), ExitLine(0x11, "SetCam" + name));
    }

    Lines WriteAccesses(Lines accesses)
    {
        if (row.refusedWhileStreaming)
            accesses.insert(accesses.begin(), ReadOf(0x20004, 1));
        return accesses;
    }

    void ExpectInquiryDecides(uint32_t value)
    {
        for (const RefusedInquiry &refused : readRefusals) {
            SetInquiry(row.block, refused.inquiry);
            EXPECT_EQ(Get(refused.status), 77u);
        }
        for (const RefusedInquiry &refused : writeRefusals) {
            SetInquiry(row.block, refused.inquiry);
            ExpectRefused(value, refused.status);
        }
    }
};

std::string EnumRowName(const ::testing::TestParamInfo<EnumRow> &info) { return info.param.name; }

class EnumFeatureTest : public EnumRowTest {
  protected:
    void SetMasks(std::initializer_list<uint32_t> masks, uint32_t value = 0)
    {
        SetBlock(row.block, {allAccess, 0, 0});
        SetBlock(row.block + 0xC, masks);
        stub.registers[row.block + 0x1C] = value;
        Forget();
    }
};
INSTANTIATE_TEST_SUITE_P(Features, EnumFeatureTest, ::testing::ValuesIn(s_enums), EnumRowName);

TEST_P(EnumFeatureTest, ReadsInquiryThenValueAsItStands)
{
    SetMasks({0, 0, 0, 0}, 0xDEADBEEF);
    EXPECT_EQ(Get(), 0xDEADBEEF);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 1), ReadOf(row.block + 0x1C, 1)}));
}

TEST_P(EnumFeatureTest, WritesOneWordBehindOneBlock)
{
    SetMasks({2, 0, 0, 0});
    EXPECT_EQ(row.set(hCamera, 1), 0u);
    EXPECT_EQ(stub.registers[row.block + 0x1C], 1u);
    EXPECT_EQ(TakeAccesses(), WriteAccesses({ReadOf(row.block, 7), WriteOf(row.block + 0x1C)}));
}

TEST_P(EnumFeatureTest, EveryMaskBitStandsForItsValue)
{
    for (uint32_t value = 0; value < 128; ++value) {
        uint32_t masks[4] = {};
        masks[value / 32] = 1u << (value % 32);
        SetMasks({masks[0], masks[1], masks[2], masks[3]});
        EXPECT_EQ(row.set(hCamera, value), 0u);
        EXPECT_EQ(stub.registers[row.block + 0x1C], value);
        SetMasks({~masks[0], ~masks[1], ~masks[2], ~masks[3]});
        ExpectRefused(value, 0x808);
    }
}

TEST_P(EnumFeatureTest, ValuesWithoutABitFail)
{
    SetMasks({~0u, ~0u, ~0u, ~0u});
    for (const uint32_t value : {128u, 129u, 0x80000000u, ~0u})
        ExpectRefused(value, 0xFFFFFFFF);
    SetInquiry(row.block, 0);
    ExpectRefused(128, 0x11);
}

TEST_P(EnumFeatureTest, InquiryDecides)
{
    SetMasks({~0u, ~0u, ~0u, ~0u});
    ExpectInquiryDecides(1);
}

TEST_P(EnumFeatureTest, LogsArgumentsAndResults)
{
    SetMasks({~0u, ~0u, ~0u, ~0u}, 1);
    ExpectLines(1);
}

TEST_P(EnumFeatureTest, FailedAccessIsTheStatus)
{
    SetMasks({~0u, ~0u, ~0u, ~0u}, 1);
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(Get(0x12), 77u);
    stub.Script(Stub::Entry::Cam_ReadReg, {0, 0x13});
    EXPECT_EQ(Get(0x13), 77u);
    stub.Script(Stub::Entry::Cam_WriteReg, {0x12});
    EXPECT_EQ(row.set(hCamera, 1), 0x12u);
}

TEST_P(EnumFeatureTest, StreamingRefusesWhatChangesTheImage)
{
    SetMasks({~0u, 0, 0, 0});
    SetStreaming(true);
    if (row.refusedWhileStreaming) {
        ExpectRefused(1, 0x807);
        EXPECT_EQ(TakeAccesses(), Lines{ReadOf(0x20004, 1)});
        stub.registers.erase(0x20004); // does not tell
    }
    EXPECT_EQ(row.set(hCamera, 1), 0u);
}

class ModeFeatureTest : public EnumRowTest {};
INSTANTIATE_TEST_SUITE_P(Features, ModeFeatureTest, ::testing::ValuesIn(s_modes), EnumRowName);

TEST_P(ModeFeatureTest, ReadsInquiryThenModeAsItStands)
{
    SetBlock(row.block, {allAccess, 0, 0xDEADBEEF});
    EXPECT_EQ(Get(), 0xDEADBEEF);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 1), ReadOf(row.block + 8, 1)}));
}

TEST_P(ModeFeatureTest, ModesAreBitsOfTheInquiry)
{
    for (uint32_t mode = 0; mode < 32; ++mode) {
        const uint32_t bit = 1u << mode;
        SetBlock(row.block, {allAccess | bit, 0, 99});
        Forget();
        EXPECT_EQ(row.set(hCamera, mode), 0u);
        EXPECT_EQ(stub.registers[row.block + 8], mode);
        EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 1), WriteOf(row.block + 8)}));
        SetInquiry(row.block, ~bit);
        if ((bit & (implemented | available | writable)) == 0)
            ExpectRefused(mode, 0x808);
    }
    SetInquiry(row.block, ~0u);
    for (const uint32_t mode : {32u, 64u, ~0u})
        ExpectRefused(mode, 0x808);
}

TEST_P(ModeFeatureTest, InquiryDecides)
{
    SetBlock(row.block, {0, 0, 99});
    ExpectInquiryDecides(1);
}

TEST_P(ModeFeatureTest, LogsArgumentsAndResults)
{
    SetBlock(row.block, {~0u, 0, 1});
    ExpectLines(1);
}

} // namespace Orvi::Testing
