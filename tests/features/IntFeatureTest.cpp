// Scaled integers on the register road.

#include "tests/features/FeatureTest.h"

#include <limits>

namespace Orvi::Testing {

struct IntRow {
    const char *name;
    uint64_t block;
    const char *argument; ///< in the log
    const char *limit;    ///< in the log, before Min and Max
    bool refusedWhileStreaming;
    CAM_API_STATUS (*limits)(CAM_HANDLE, uint32_t *, uint32_t *);
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

#define ROW(feature, block, argument, limit, refused)                                                                  \
    {                                                                                                                  \
#feature, block, argument, limit, refused, GetCam##feature##MinMax, GetCam##feature, SetCam##feature           \
    }
const IntRow s_rows[] = {
    // clang-format off
    ROW(BinningHorizontal,     0x21F140, "Value", "", true),
    ROW(BinningVertical,       0x21F160, "Value", "", true),
    ROW(DecimationHorizontal,  0x21F180, "Value", "", true),
    ROW(DecimationVertical,    0x21F1A0, "Value", "", true),
    ROW(AcquisitionFrameCount, 0x203040, "AcquisitionFrameCount", "AcquisitionFrameCount", false),
    ROW(Sharpness,             0x2040A0, "Sharpness", "Sharpness", false),
    ROW(TriggerAdditionalParameter, 0x207080, "Value", "", false),
    // clang-format on
};
#undef ROW

class IntFeatureTest : public FeatureTest, public ::testing::WithParamInterface<IntRow> {
  protected:
    const IntRow &row = GetParam();
    // It writes as an integer first, and tries a float when that is refused.
    const bool triesFloat = row.block == 0x207080;

    IntFeatureTest() { SetStreaming(false); }

    void SetScale(uint32_t n, uint32_t d, int32_t min, int32_t max, uint32_t value = 0)
    {
        SetBlock(row.block, {allAccess, 0, 0, n, d, static_cast<uint32_t>(min), static_cast<uint32_t>(max), value});
        Forget();
    }

    uint32_t Raw() { return stub.registers[row.block + 0x1C]; }

    uint32_t Get()
    {
        uint32_t value = 77;
        EXPECT_EQ(row.get(hCamera, &value), 0u);
        return value;
    }

    void ExpectRefused(uint32_t value, CAM_API_STATUS status = 0xD)
    {
        const auto before = stub.registers;
        EXPECT_EQ(row.set(hCamera, value), status) << value;
        EXPECT_EQ(stub.registers, before) << value;
    }

    void ExpectSets(uint32_t value, uint32_t raw)
    {
        EXPECT_EQ(row.set(hCamera, value), 0u) << value;
        EXPECT_EQ(Raw(), raw) << value;
    }

    Lines WriteAccesses(Lines accesses)
    {
        if (row.refusedWhileStreaming)
            accesses.insert(accesses.begin(), ReadOf(0x20004, 1));
        return accesses;
    }
};

INSTANTIATE_TEST_SUITE_P(Features, IntFeatureTest, ::testing::ValuesIn(s_rows),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(IntFeatureTest, AccessesOneBlockAndOneWord)
{
    SetScale(3, 2, 0, 100, 5);
    EXPECT_EQ(Get(), 7u); // 7.5
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 8)});
    uint32_t min = 77, max = 77;
    EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
    EXPECT_EQ(min, 0u);
    EXPECT_EQ(max, 150u);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 7)});
    ExpectSets(10, 6); // 20 / 3
    EXPECT_EQ(TakeAccesses(), WriteAccesses({ReadOf(row.block, 7), WriteOf(row.block + 0x1C)}));
}

TEST_P(IntFeatureTest, LogsArgumentsAndResults)
{
    SetScale(0, 0, 1, 100, 5);
    const std::string name = row.name, pui = "*pui";
    Get();
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + ", hCam=0x11"),
                                  ExitLine(0, "GetCam" + name + ", " + pui + row.argument + "=5")}));
    uint32_t min = 0, max = 0;
    row.limits(hCamera, &min, &max);
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + "MinMax, hCam=0x11"),
                                  ExitLine(0, "GetCam" + name + "MinMax, " + pui + row.limit + "Min=1, " + pui +
                                                  row.limit + "Max=100")}));
    row.set(hCamera, 6);
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("SetCam" + name + ", hCam=0x11, ui" + row.argument + "=6"),
                                  ExitLine(0, "SetCam" + name)}));
    row.set(hCamera, 0);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0xD, "SetCam" + name));
}

TEST_P(IntFeatureTest, InquiryDecides)
{
    SetScale(0, 0, 0, 100, 5);
    uint32_t value = 77, min = 77, max = 77;
    for (const RefusedInquiry &refused : readRefusals) {
        SetInquiry(row.block, refused.inquiry);
        EXPECT_EQ(row.get(hCamera, &value), refused.status) << refused.inquiry;
        EXPECT_EQ(row.limits(hCamera, &min, &max), refused.status) << refused.inquiry;
    }
    for (const uint32_t untouched : {value, min, max})
        EXPECT_EQ(untouched, 77u);
    for (const RefusedInquiry &refused : writeRefusals) {
        SetInquiry(row.block, refused.inquiry);
        ExpectRefused(3, refused.status);
    }
}

TEST_P(IntFeatureTest, FailedAccessIsTheStatus)
{
    SetScale(0, 0, 0, 100, 5);
    uint32_t value = 77, other = 77;
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12, 0x12});
    EXPECT_EQ(row.get(hCamera, &value), 0x12u);
    EXPECT_EQ(row.limits(hCamera, &value, &other), 0x12u);
    EXPECT_EQ(value, 77u);
    stub.Script(Stub::Entry::Cam_WriteReg, {0x13, 0x15});
    EXPECT_EQ(row.set(hCamera, 3), 0x13u);
    EXPECT_EQ(stub.CountOf(Stub::Entry::Nd_GetNode), 0u);
}

TEST_P(IntFeatureTest, LimitsAreRawInclusiveAndSigned)
{
    SetScale(1, 10, -5, 25);
    ExpectSets(2, 20);
    ExpectRefused(3);
    SetScale(0, 0, -5, 25);
    ExpectSets(25, 25);
    ExpectRefused(26);
    ExpectSets(static_cast<uint32_t>(-5), static_cast<uint32_t>(-5));
    ExpectRefused(static_cast<uint32_t>(-6));
    ExpectRefused(0x80000000);
}

TEST_P(IntFeatureTest, ScaleIsInactiveWhenZeroOrEqual)
{
    for (const auto &[n, d] : {std::pair{0u, 5u}, {5u, 0u}, {1u, 1u}}) {
        SetScale(n, d, 0, 1000, 40);
        EXPECT_EQ(Get(), 40u);
        ExpectSets(50, 50);
    }
    if (!triesFloat) {
        SetScale(4, 4, 0, 1000);
        ExpectSets(50, 50); // an equal scale is no increment here
    }
}

TEST_P(IntFeatureTest, ReadingIsSigned32BitAndTruncates)
{
    SetScale(static_cast<uint32_t>(-3), 2, 0, 100, 5);
    EXPECT_EQ(static_cast<int32_t>(Get()), -7);
    SetScale(0x10000, 2, 0x8000, 0x10000, 0x8000); // the product is -2^31
    EXPECT_EQ(static_cast<int32_t>(Get()), -0x40000000);
    uint32_t min = 0, max = 77;
    EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
    EXPECT_EQ(static_cast<int32_t>(min), -0x40000000);
    EXPECT_EQ(max, 0u);
    SetScale(1, static_cast<uint32_t>(-1), 0, 0, 0x80000000); // -2^31 / -1
    EXPECT_EQ(Get(), 0x80000000u);
}

TEST_P(IntFeatureTest, WritingIsUnsigned32Bit)
{
    SetScale(7, 0x10000, 0, 0x7FFFFFFF);
    ExpectSets(0x10001, 0x10000 / 7); // the product has lost its upper half
    if (!triesFloat) {
        SetScale(static_cast<uint32_t>(-1), 2, -100, 100);
        ExpectSets(3, 0); // 6 / (2^32 - 1)
    }
}

TEST_P(IntFeatureTest, ExtremeWordsAreHarmless)
{
    for (const uint32_t word : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        for (const uint32_t other : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            SetScale(word, other, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(), word);
            uint32_t min = 0, max = 0;
            Get();
            EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
            for (const uint32_t value : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
                const CAM_API_STATUS status = row.set(hCamera, value);
                EXPECT_TRUE(status == 0 || status == 0xD) << status;
            }
        }
}

TEST_P(IntFeatureTest, StreamingRefusesWhatChangesTheImageSize)
{
    SetScale(0, 0, 0, 100, 5);
    SetStreaming(true);
    if (!row.refusedWhileStreaming) {
        ExpectSets(6, 6);
        return;
    }
    ExpectRefused(6, 0x807);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(0x20004, 1)}) << "the block is not even read";
    EXPECT_EQ(TakeLog().back(), ExitLine(0x807, std::string("SetCam") + row.name));
    // A camera that does not tell counts as not streaming.
    stub.registers.erase(0x20004);
    ExpectSets(6, 6);
}

class AdditionalParameterTest : public FeatureTest {};

TEST_F(AdditionalParameterTest, RefusedIntegerIsTriedAsFloat)
{
    // Without their signs, as integers have them, the words give raw 0; with their signs 6 * -2 / -4.
    SetBlock(0x207080, {allAccess, 0, 0, static_cast<uint32_t>(-4), static_cast<uint32_t>(-2), 2, 9, 0});
    Forget();
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 6), 0u);
    EXPECT_EQ(stub.registers[0x20709C], 3u);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x207080, 7), ReadOf(0x207080, 7), WriteOf(0x20709C)}));
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 19), 0xDu) << "neither";
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x207080, 7), ReadOf(0x207080, 7)}));
}

TEST_F(AdditionalParameterTest, EqualScaleIsAnIncrement)
{
    SetBlock(0x207080, {allAccess, 0, 0, 4, 4, 1, 100, 0});
    Forget();
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 8), 0xDu);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x207080, 7), ReadOf(0x207080, 7)}));
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 9), 0u);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x207080, 7), WriteOf(0x20709C)}));
}

TEST_F(AdditionalParameterTest, FloatsFailureIsHidden)
{
    SetBlock(0x207080, {allAccess, 0, 0, 0, 0, 0, 100, 0});
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12, 0x13});
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 8), 0x12u);
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCamera, 8), 0u);
    EXPECT_EQ(stub.registers[0x20709C], 8u);
}

class ImageBufferFrameCountTest : public FeatureTest {};

TEST_F(ImageBufferFrameCountTest, IsAScaledInteger)
{
    SetBlock(0x203080, {allAccess, 0, 0, 3, 2, 0, 100, 5});
    uint32_t count = 0;
    Forget();
    EXPECT_EQ(GetCamImageBufferFrameCount(hCamera, &count), 0u);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(0x203080, 8)});
    EXPECT_EQ(TakeFrame().back(), ExitLine(0, "GetCamImageBufferFrameCount, *puiImageBufferFrameCount=7"));
    for (const RefusedInquiry &refused : readRefusals) {
        SetInquiry(0x203080, refused.inquiry);
        EXPECT_EQ(GetCamImageBufferFrameCount(hCamera, &count), refused.status);
    }
}

} // namespace Orvi::Testing
