// Scaled floats on the register road.

#include "tests/features/FeatureTest.h"

#include <cmath>
#include <limits>

namespace Orvi::Testing {

struct FloatRow {
    const char *name;
    uint64_t block;
    bool microseconds;
    CAM_API_STATUS (*limits)(CAM_HANDLE, double *, double *);
    CAM_API_STATUS (*get)(CAM_HANDLE, double *);
    CAM_API_STATUS (*set)(CAM_HANDLE, double);
    const char *getterLoggedAs = nullptr;
};

#define ROW(feature, block, microseconds, ...)                                                                         \
    {                                                                                                                  \
#feature, block, microseconds, GetCam##feature##MinMax, GetCam##feature, SetCam##feature, __VA_ARGS__          \
    }
const FloatRow s_rows[] = {
    // clang-format off
    ROW(AcquisitionFrameRate, 0x2030A0, false),
    ROW(ExposureTime,         0x204020, true),
    ROW(BlackLevel,           0x204040, false),
    ROW(Gain,                 0x204060, false, "GetCamGainMinMax"), // its success is logged under the neighbour's name
    ROW(Gamma,                0x204080, false),
    ROW(Hue,                  0x205020, false),
    ROW(Saturation,           0x205040, false),
    ROW(TriggerDelay,         0x2070A0, true),
    ROW(TimerDelay,           0x20A040, true),
    ROW(TimerDuration,        0x20A060, true),
    // clang-format on
};
#undef ROW

class FloatFeatureTest : public FeatureTest, public ::testing::WithParamInterface<FloatRow> {
  protected:
    const FloatRow &row = GetParam();
    const double factor = row.microseconds ? 1e6 : 1;

    void SetScale(uint32_t n, uint32_t d, int32_t min, int32_t max, int32_t value = 0)
    {
        SetBlock(row.block, {allAccess, 0xAAAAAAAA, 0, n, d, static_cast<uint32_t>(min), static_cast<uint32_t>(max),
                             static_cast<uint32_t>(value)});
        Forget();
    }

    int32_t Raw() { return static_cast<int32_t>(stub.registers[row.block + 0x1C]); }

    double Get()
    {
        double value = -77;
        EXPECT_EQ(row.get(hCamera, &value), 0u);
        return value;
    }

    void ExpectRefused(double value, CAM_API_STATUS status = 0xD)
    {
        Forget();
        const auto before = stub.registers;
        EXPECT_EQ(row.set(hCamera, value), status) << value;
        EXPECT_EQ(stub.registers, before) << value;
        EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 7)});
    }

    void ExpectSets(double value, int32_t raw)
    {
        EXPECT_EQ(row.set(hCamera, value), 0u) << value;
        EXPECT_EQ(Raw(), raw) << value;
    }
};

INSTANTIATE_TEST_SUITE_P(Features, FloatFeatureTest, ::testing::ValuesIn(s_rows),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(FloatFeatureTest, ReadsOneBlock)
{
    SetScale(3, 2, -4, 100, 5);
    double min = 0, max = 0;
    EXPECT_DOUBLE_EQ(Get(), 7.5 * factor);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 8)});
    EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(row.block, 7)});
    EXPECT_DOUBLE_EQ(min, -6 * factor);
    EXPECT_DOUBLE_EQ(max, 150 * factor);
}

TEST_P(FloatFeatureTest, WritesOneWordBehindOneBlock)
{
    SetScale(3, 2, -4, 100);
    ExpectSets(9 * factor, 6);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(row.block, 7), WriteOf(row.block + 0x1C)}));
}

TEST_P(FloatFeatureTest, LogsArgumentsAndResults)
{
    SetScale(3, 2, -4, 100, 5);
    const std::string name = row.name, pd = "*pd" + name;
    double value = 0, min = 0, max = 0;
    row.get(hCamera, &value);
    const std::string inSuccess = row.getterLoggedAs != nullptr ? row.getterLoggedAs : "GetCam" + name;
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + ", hCam=0x11"),
                                  ExitLine(0, inSuccess + ", " + pd + "=" + LogReal(7.5 * factor))}));
    row.limits(hCamera, &min, &max);
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("GetCam" + name + "MinMax, hCam=0x11"),
                                  ExitLine(0, "GetCam" + name + "MinMax, " + pd + "Min=" + LogReal(-6 * factor) + ", " +
                                                  pd + "Max=" + LogReal(150 * factor))}));
    row.set(hCamera, 1.5);
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("SetCam" + name + ", hCam=0x11, d" + name + "=" + LogReal(1.5)),
                                  ExitLine(0, "SetCam" + name)}));
    row.set(hCamera, 1e9);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0xD, "SetCam" + name));
    SetInquiry(row.block, 0);
    row.get(hCamera, &value);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0x11, "GetCam" + name)) << "only a success has the neighbour's name";
    row.limits(hCamera, &min, &max);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0x11, "GetCam" + name + "MinMax"));
}

TEST_P(FloatFeatureTest, InquiryDecides)
{
    SetScale(3, 2, -4, 100, 5);
    double value = -77, min = -77, max = -77;
    for (const RefusedInquiry &refused : readRefusals) {
        SetInquiry(row.block, refused.inquiry);
        EXPECT_EQ(row.get(hCamera, &value), refused.status) << refused.inquiry;
        EXPECT_EQ(row.limits(hCamera, &min, &max), refused.status) << refused.inquiry;
    }
    for (const double untouched : {value, min, max})
        EXPECT_EQ(untouched, -77);
    for (const RefusedInquiry &refused : writeRefusals) {
        SetInquiry(row.block, refused.inquiry);
        ExpectRefused(3 * factor, refused.status);
    }
    SetInquiry(row.block, allAccess & ~writable);
    EXPECT_EQ(row.get(hCamera, &value), 0u);
    SetInquiry(row.block, allAccess & ~readable);
    ExpectSets(3 * factor, 2);
}

TEST_P(FloatFeatureTest, FailedAccessIsTheStatusAndNoNodeIsAsked)
{
    SetScale(3, 2, -4, 100, 5);
    stub.nodes[row.name].floatValue = 5;
    double value = -77, other = -77;
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12, 0x12, 0x12});
    EXPECT_EQ(row.get(hCamera, &value), 0x12u);
    EXPECT_EQ(row.limits(hCamera, &value, &other), 0x12u);
    EXPECT_EQ(row.set(hCamera, 3 * factor), 0x12u);
    stub.Script(Stub::Entry::Cam_WriteReg, {0x13});
    EXPECT_EQ(row.set(hCamera, 3 * factor), 0x13u);
    EXPECT_EQ(value, -77);
    EXPECT_EQ(stub.CountOf(Stub::Entry::Nd_GetNode), 0u);
}

TEST_P(FloatFeatureTest, WithoutScaleTheRawValueIsTheUnitValue)
{
    for (const auto &[n, d] : {std::pair{0u, 5u}, {5u, 0u}, {0u, 0u}, {1u, 1u}, {0xFFFFFFFFu, 0xFFFFFFFFu}}) {
        SetScale(n, d, -2'000'000, 2'000'000, -7);
        EXPECT_DOUBLE_EQ(Get(), -7 * factor);
        double min = 0, max = 0;
        EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
        EXPECT_DOUBLE_EQ(min, -2e6 * factor);
        EXPECT_DOUBLE_EQ(max, 2e6 * factor);
        // Here the microseconds are cut, and the limits are those of the raw value.
        ExpectSets(1'500'000, row.microseconds ? 1 : 1'500'000);
        ExpectSets(-1'999'999.9, row.microseconds ? -1 : -1'999'999);
        ExpectSets(0.9, 0);
        ExpectRefused(2'000'000.5);
        ExpectRefused(-2'000'001);
    }
}

TEST_P(FloatFeatureTest, RoundsHalfAwayFromZero)
{
    SetScale(1, 10, -1000, 1000); // raw = 10 * value
    ExpectSets(1.05 * factor, 11);
    ExpectSets(1.04 * factor, 10);
    ExpectSets(-1.06 * factor, -11);
    ExpectSets(-1.04 * factor, -10);
    SetScale(2, 1, -1000, 1000); // raw = value / 2
    ExpectSets(5 * factor, 3);
    ExpectSets(-5 * factor, -3);
}

TEST_P(FloatFeatureTest, LimitsAreScaledAndInclusive)
{
    SetScale(1, 10, -5, 25);
    ExpectSets(2.5 * factor, 25);
    ExpectSets(-0.5 * factor, -5);
    ExpectRefused(2.5 * factor + 1e-6);
    ExpectRefused(-0.5 * factor - 1e-6);
    for (const double nothing : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(), 1e300, -1e300})
        ExpectRefused(nothing);
}

TEST_P(FloatFeatureTest, NegativeScaleFollowsTheSigns)
{
    SetScale(static_cast<uint32_t>(-1), 2, -10, 10, 4);
    EXPECT_DOUBLE_EQ(Get(), -2 * factor);
    // The limits change places, so that no value lies between them.
    double min = 0, max = 0;
    EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
    EXPECT_DOUBLE_EQ(min, 5 * factor);
    EXPECT_DOUBLE_EQ(max, -5 * factor);
    ExpectRefused(0);
}

TEST_P(FloatFeatureTest, ProductsAreFormedIn32Bits)
{
    SetScale(0x10000, 2, 0, 0x8000, 0x8000);
    EXPECT_DOUBLE_EQ(Get(), -1073741824.0 * factor);
    SetScale(0x10000, 3, 0, 0x10000, 0x10000);
    EXPECT_DOUBLE_EQ(Get(), 0);
    // The greatest value has wrapped to 0: nothing above it is accepted.
    ExpectRefused(1 * factor);
    ExpectSets(0, 0);
}

TEST_P(FloatFeatureTest, ExtremeWordsAreHarmless)
{
    for (const uint32_t word : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        for (const uint32_t other : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            SetScale(word, other, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(),
                     static_cast<int32_t>(word));
            double value = 0, min = 0, max = 0;
            EXPECT_EQ(row.get(hCamera, &value), 0u);
            EXPECT_EQ(row.limits(hCamera, &min, &max), 0u);
            for (const double wanted : {min, max, value, 0.0, 1e18, -1e18, std::nan("")}) {
                const CAM_API_STATUS status = row.set(hCamera, wanted);
                EXPECT_TRUE(status == 0 || status == 0xD) << status;
            }
        }
}

TEST_P(FloatFeatureTest, EqualScaleIsAnIncrement)
{
    SetScale(4, 4, 0, 2'000'000'000);
    const double step = row.microseconds ? 1e6 : 1;
    ExpectRefused(6 * step);
    ExpectSets(8 * step, 8);
    SetScale(4, 4, 1, 2'000'000'000);
    ExpectRefused(8 * step);
    ExpectSets(9 * step, 9);
    SetScale(static_cast<uint32_t>(-4), static_cast<uint32_t>(-4), -2'000'000'000, 2'000'000'000);
    ExpectRefused(-1 * step);
    ExpectSets(-4 * step, -4);
}

// The rounding goes by the sign of the value, not of the raw value, and so may step over a limit: then the value is
// cut, without the factor of microseconds.
TEST_P(FloatFeatureTest, SecondFormulaAtTheEdge)
{
    for (const int32_t limit : {5, -3}) { // over the lower one, over the upper one
        SetScale(1, static_cast<uint32_t>(-2), limit, limit);
        if (row.microseconds)
            ExpectRefused(limit / -2.0 * factor);
        else
            ExpectSets(limit / -2.0, limit);
    }
    // The limits have wrapped to 0 and 2^30: values between them mean raw values below the least one.
    SetScale(0x10000, 1, 0x10000, 0x14000);
    if (row.microseconds)
        ExpectSets(65536 * 70000.5, 70000);
    else
        ExpectRefused(65536 * 70000.0);
    ExpectRefused(65536 * 20000.0);
}

} // namespace Orvi::Testing
