// A camera without control registers answers the feature functions as the same camera with them does.

#include "tests/e2e/RequestChannel.h"
#include "tests/support/ScopedVariable.h"

#include <cmath>
#include <functional>
#include <sstream>

namespace Orvi::Testing {

namespace {

/// A status and what came with it; floats as far as registers of either kind resolve them.
template <class... Values>
std::string Text(CAM_API_STATUS status, Values... values)
{
    std::ostringstream text;
    text << std::hex << status << std::dec;
    if (status == CAM_API_STS_SUCCESS)
        ((text << ' ' << values), ...);
    return text.str();
}

/// One function applied to a camera.
struct Step {
    std::string name;
    std::function<std::string(CAM_HANDLE)> run;
};
using Steps = std::vector<Step>;

template <class Value>
Step Get(const char *name, CAM_API_STATUS (*get)(CAM_HANDLE, Value *))
{
    return {name, [get](CAM_HANDLE hCam) {
                Value value{};
                const CAM_API_STATUS status = get(hCam, &value);
                return Text(status, value);
            }};
}

template <class Value, class Argument>
Step Set(const char *name, CAM_API_STATUS (*set)(CAM_HANDLE, Value), Argument value)
{
    return {std::string(name) + " " + Text(0, value),
            [set, value](CAM_HANDLE hCam) { return Text(set(hCam, static_cast<Value>(value))); }};
}

template <class Value>
Step Limits(const char *name, CAM_API_STATUS (*get)(CAM_HANDLE, Value *, Value *))
{
    return {name, [get](CAM_HANDLE hCam) {
                Value min{}, max{};
                const CAM_API_STATUS status = get(hCam, &min, &max);
                return Text(status, min, max);
            }};
}

Step Limits(const char *name, CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *, uint32_t *, uint32_t *))
{
    return {name, [get](CAM_HANDLE hCam) {
                uint32_t min = 0, max = 0, inc = 0;
                const CAM_API_STATUS status = get(hCam, &min, &max, &inc);
                return Text(status, min, max, inc);
            }};
}

Step Execute(const char *name, CAM_API_STATUS (*execute)(CAM_HANDLE))
{
    return {name, [execute](CAM_HANDLE hCam) { return Text(execute(hCam)); }};
}

/// Limits and value, then values in and out of the range with the value that is there afterwards.
template <class Value, class Argument>
Steps Number(const char *name, CAM_API_STATUS (*limits)(CAM_HANDLE, Value *, Value *),
             CAM_API_STATUS (*get)(CAM_HANDLE, Value *), CAM_API_STATUS (*set)(CAM_HANDLE, Value),
             std::initializer_list<Argument> values)
{
    Steps steps = {Limits(name, limits), Get(name, get)};
    for (const Argument value : values) {
        steps.push_back(Set(name, set, value));
        steps.push_back(Get(name, get));
    }
    return steps;
}

template <class Value>
Steps Choice(const char *name, CAM_API_STATUS (*get)(CAM_HANDLE, Value *), CAM_API_STATUS (*set)(CAM_HANDLE, Value),
             std::initializer_list<int> values)
{
    Steps steps = {Get(name, get)};
    for (const int value : values) {
        steps.push_back(Set(name, set, value));
        steps.push_back(Get(name, get));
    }
    return steps;
}

class SameResultsTest : public VirtualCameraTest {
  protected:
    SameResultsTest() : VirtualCameraTest(ORVI_TEST_CAMERAS, 5), registers(Open(0)), nodes(Open(1)) {}

    void Compare(const Steps &steps)
    {
        for (const Step &step : steps)
            EXPECT_EQ(step.run(registers), step.run(nodes)) << step.name;
    }

    CAM_HANDLE registers, nodes;
};

#define NUMBER(name, ...) Number(#name, GetCam##name##MinMax, GetCam##name, SetCam##name, {__VA_ARGS__})
#define CHOICE(name, ...) Choice(#name, GetCam##name, SetCam##name, {__VA_ARGS__})

TEST_F(SameResultsTest, TheSecondCameraHasNoRegisterMapOfItsOwn)
{
    // A word of the area that belongs to no block.
    uint32_t word = 0;
    EXPECT_EQ(Cam_ReadReg(registers, 0x202000, 1, &word), 0u);
    EXPECT_EQ(Cam_ReadReg(nodes, 0x202000, 1, &word), CAM_API_STS_INVALID_ADDRESS);
}

TEST_F(SameResultsTest, SwitchedOffTheCameraHasNoRegisters)
{
    ASSERT_EQ(Cam_Close(nodes), 0u);
    const ScopedVariable off("ORVI_REGISTER_EMULATION", "0");
    nodes = Open(1);
    double gain = 0;
    EXPECT_EQ(GetCamGain(nodes, &gain), CAM_API_STS_INVALID_ADDRESS);
    EXPECT_EQ(SetCamGain(nodes, 1), CAM_API_STS_INVALID_ADDRESS);
    // Sizes can be read from nodes by the functions themselves, and images flow as they did.
    uint32_t width = 0;
    EXPECT_EQ(GetCamWidth(nodes, &width), 0u);
    RequestChannel channel(nodes, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(channel.Next().info.uiWidth, width);
    channel.Stop();
}

TEST_F(SameResultsTest, ImageSize)
{
    Compare({Get("SensorWidth", GetCamSensorWidth), Get("SensorHeight", GetCamSensorHeight),
             Limits("Width", GetCamWidthMinMax), Limits("Height", GetCamHeightMinMax),
             Limits("OffsetX", GetCamOffsetXMinMax), Limits("OffsetY", GetCamOffsetYMinMax)});
    Compare(CHOICE(Width, 320, 2, 321, 4000, 1920));
    Compare(CHOICE(Height, 240, 1, 4000, 1200));
    Compare(CHOICE(Width, 640));
    Compare(CHOICE(Height, 480));
    Compare(CHOICE(OffsetX, 64, 63, 1280, 1284));
    Compare(CHOICE(OffsetY, 2, 3, 720, 722));
    Compare({{"Roi", [](CAM_HANDLE hCam) { return Text(SetCamRoi(hCam, 800, 600, 40, 20)); }},
             {"Roi",
              [](CAM_HANDLE hCam) {
                  uint32_t width = 0, height = 0, x = 0, y = 0;
                  const CAM_API_STATUS status = GetCamRoi(hCam, &width, &height, &x, &y);
                  return Text(status, width, height, x, y);
              }},
             Get("StreamPayloadSize", GetCamStreamPayloadSize),
             Get("StreamEnable", GetCamStreamEnable)});
}

TEST_F(SameResultsTest, BinningDecimationAndMirroring)
{
    Compare(NUMBER(BinningHorizontal, 2, 0, 5, 1));
    Compare(NUMBER(BinningVertical, 4, 5, 1));
    Compare(NUMBER(DecimationHorizontal, 2, 9, 1));
    Compare(NUMBER(DecimationVertical, 3, 1));
    Compare(CHOICE(ReverseX, 1, 0));
    Compare(CHOICE(ReverseY, 1, 0));
}

TEST_F(SameResultsTest, FormatAndTestPattern)
{
    Compare(CHOICE(ImageFormatSelector, 1, 0, 3));
    for (const PixelFormat &format : PixelFormats(registers))
        Compare({Set("PixelFormat", SetCamPixelFormat, format.code), Get("PixelFormat", GetCamPixelFormat),
                 Get("StreamPayloadSize", GetCamStreamPayloadSize)});
    Compare(CHOICE(PixelFormat, CAM_PIXEL_FORMAT_BGR10, 0));
    Compare(CHOICE(TestPattern, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0));
}

TEST_F(SameResultsTest, Acquisition)
{
    Compare(NUMBER(AcquisitionFrameCount, 10, 0, 65536, 1));
    Compare(CHOICE(AcquisitionFrameRateControl, 0, 2, 1));
    Compare(NUMBER(AcquisitionFrameRate, 12.5, 0.1, 999.999, 1001.0, 30.0));
    Compare(CHOICE(ImageBufferMode, 1, 2, 0));
    Compare({Get("ImageBufferFrameCount", GetCamImageBufferFrameCount),
             Execute("ImageBufferRead", ExecuteCamImageBufferRead)});
}

TEST_F(SameResultsTest, ExposureAndLevels)
{
    Compare(CHOICE(ExposureTimeControl, 2, 3, 0, 1));
    Compare(NUMBER(ExposureTime, 5000.0, 20.0, 19.0, 123.0, 16000000.0, 16000001.0, 10000.0));
    Compare(CHOICE(GainAuto, 2, 3, 1));
    Compare(NUMBER(Gain, 1.5, 24.0, 24.1, -1.0, 0.25, 0.0));
    Compare(NUMBER(BlackLevel, 1.5, 63.9375, 64.0, 0.0));
    Compare(NUMBER(Gamma, 0.5, 0.24, 4.0, 4.1, 1.0));
    Compare(NUMBER(Sharpness, 3, 9, 0));
}

TEST_F(SameResultsTest, Colour)
{
    Compare(NUMBER(Hue, -180.0, 12.5, 180.5, 0.0));
    Compare(NUMBER(Saturation, 2.5, 4.5, 1.0));
    Compare(CHOICE(BalanceWhiteAuto, 3, 2, 1));
    Compare({{"BalanceRatio", [](CAM_HANDLE hCam) {
                  double min = 0, max = 0, blue = 0;
                  EXPECT_EQ(GetCamBalanceRatioMinMax(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, &min, &max), 0u);
                  return Text(GetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, &blue), min, max, blue);
              }}});
}

TEST_F(SameResultsTest, Trigger)
{
    Compare(CHOICE(TriggerMode, 1, 0));
    Compare(CHOICE(TriggerSequence, 1, 6, 2, 0));
    Compare(CHOICE(TriggerSource, 0, 1, 0x40));
    Compare(NUMBER(TriggerAdditionalParameter, 5, 0, 256, 1));
    Compare(NUMBER(TriggerDelay, 1000.0, 0.0, 10000000.0, 10000001.0, 0.0));
    Compare(CHOICE(TriggerActivation, 0, 1));
    Compare({Execute("SoftwareTrigger", ExecuteCamSoftwareTrigger)});
}

TEST_F(SameResultsTest, LinesAndTimers)
{
    Compare({Get("LineModeAll", GetCamLineModeAll), Get("LineStatusAll", GetCamLineStatusAll)});
    Compare(CHOICE(LineInverterAll, 5, 0));
    Compare(CHOICE(UserOutputValueAll, 2, 7, 0));
    for (const int line : {1, 2})
        for (const int source : {0x11, 0x20, 0x40, 0x63, 0x6A, 0x6B, 0x73, 0x7B, 0x7F, 0})
            Compare({{"LineSource",
                      [&](CAM_HANDLE hCam) {
                          return Text(SetCamLineSource(hCam, static_cast<CAM_LINE_SELECTOR_TYPE>(line),
                                                       static_cast<CAM_LINE_SOURCE_TYPE>(source)));
                      }},
                     {"LineSource", [&](CAM_HANDLE hCam) {
                          CAM_LINE_SOURCE_TYPE now{};
                          const CAM_API_STATUS status =
                              GetCamLineSource(hCam, static_cast<CAM_LINE_SELECTOR_TYPE>(line), &now);
                          return Text(status, now);
                      }}});
    Compare(NUMBER(TimerDuration, 500.0, 0.0, 10000001.0, 1000.0));
    Compare(NUMBER(TimerDelay, 500.0, 10000001.0, 0.0));
    Compare(CHOICE(TimerTriggerSource, 0x20, 0x68, 0x7C, 0x7D, 0x7E, 0));
}

TEST_F(SameResultsTest, ImagesAndRefusalsWhileTheyFlow)
{
    for (const CAM_HANDLE hCam : {registers, nodes}) {
        ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO12), 0u);
        ASSERT_EQ(SetCamRoi(hCam, 128, 16, 0, 0), 0u);
        RequestChannel channel(hCam, 3);
        EXPECT_EQ(channel.PayloadSize(), 128u * 16 * 2);
        channel.EnqueueAll();
        channel.Start();
        EXPECT_EQ(channel.Next().info.uiStatus, 0u);
        EXPECT_EQ(SetCamWidth(hCam, 64), CAM_API_STS_NOT_WRITABLE);
        EXPECT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO8), CAM_API_STS_NOT_WRITABLE);
        EXPECT_EQ(SetCamBinningHorizontal(hCam, 2), CAM_API_STS_NOT_WRITABLE);
        EXPECT_EQ(SetCamExposureTime(hCam, 3000), 0u);
        channel.Stop();
        EXPECT_EQ(SetCamWidth(hCam, 64), 0u);
    }
}

TEST_F(SameResultsTest, SoftwareTriggerTakesAnImage)
{
    for (const CAM_HANDLE hCam : {registers, nodes}) {
        ASSERT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_SOFTWARE), 0u);
        ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
        RequestChannel channel(hCam, 3);
        channel.EnqueueAll();
        channel.Start();
        for (uint64_t block = 0; block < 3; ++block) {
            ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
            EXPECT_EQ(channel.Next().info.uiStatus, 0u);
        }
        EXPECT_FALSE(channel.TryNext());
        channel.Stop();
        EXPECT_EQ(SetCamTriggerMode(hCam, false), 0u);
    }
}

} // namespace

} // namespace Orvi::Testing
