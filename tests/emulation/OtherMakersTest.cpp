// Cameras of other makers through the feature functions: what their nodes have works, the rest is "not implemented".

#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

namespace {

class OtherMakersTest : public VirtualCameraTest {
  protected:
    OtherMakersTest() : VirtualCameraTest(ORVI_TEST_CAMERAS, 5) {}

    CAM_HANDLE OpenAsItIs(uint32_t index)
    {
        EXPECT_EQ(Cam_Open(index, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
        WriteWord(hCam, Virtual::unthrottled, 1);
        return hCam;
    }
    ~OtherMakersTest() override { Cam_Close(hCam); }

    template <class Value, class Get>
    Value Read(Get get)
    {
        Value value{};
        EXPECT_EQ(get(hCam, &value), 0u);
        return value;
    }
    template <class Value, class Get>
    std::pair<Value, Value> Limits(Get get)
    {
        std::pair<Value, Value> limits{};
        EXPECT_EQ(get(hCam, &limits.first, &limits.second), 0u);
        return limits;
    }
    double FloatNode(const char *name)
    {
        double value = 0;
        EXPECT_EQ(Nd_GetFloatValue(hCam, Node(hCam, name), &value, false, false), 0u) << name;
        return value;
    }
    std::string Symbol(const char *name)
    {
        char symbol[64] = "";
        uint32_t size = sizeof symbol;
        EXPECT_EQ(Nd_GetEnumStrValue(hCam, Node(hCam, name), symbol, &size, false, false), 0u) << name;
        return symbol;
    }

    CAM_HANDLE hCam = 0;
};

using DoublePair = std::pair<double, double>;
using CountPair = std::pair<uint32_t, uint32_t>;

TEST_F(OtherMakersTest, ConvertersBecomeScaledRegisters)
{
    OpenAsItIs(2);
    EXPECT_EQ(Limits<double>(GetCamExposureTimeMinMax), DoublePair(10, 1000000));
    EXPECT_EQ(SetCamExposureTime(hCam, 123.4), 0u);
    EXPECT_DOUBLE_EQ(Read<double>(GetCamExposureTime), 123.4);
    EXPECT_DOUBLE_EQ(FloatNode("ExposureTime"), 123.4);
    EXPECT_EQ(SetCamExposureTime(hCam, 9.9), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamExposureTime(hCam, 1000001), CAM_API_STS_INVALID_PARAMETER);

    EXPECT_EQ(Limits<double>(GetCamAcquisitionFrameRateMinMax), DoublePair(1, 500));
    EXPECT_EQ(SetCamAcquisitionFrameRate(hCam, 25), 0u);
    EXPECT_DOUBLE_EQ(Read<double>(GetCamAcquisitionFrameRate), 25);
    EXPECT_EQ(GetInt(hCam, "FramePeriod"), 40000);

    EXPECT_EQ(Limits<double>(GetCamGainMinMax), DoublePair(0, 24));
    EXPECT_EQ(SetCamGain(hCam, 1.55), 0u);
    EXPECT_DOUBLE_EQ(Read<double>(GetCamGain), 1.55);

    EXPECT_EQ(Limits<double>(GetCamBlackLevelMinMax), DoublePair(0, 60));
    EXPECT_EQ(SetCamBlackLevel(hCam, 7), 0u);
    EXPECT_EQ(Read<double>(GetCamBlackLevel), 7);

    // Milliseconds in the node, microseconds here.
    EXPECT_EQ(Limits<double>(GetCamTriggerDelayMinMax), DoublePair(0, 500000));
    EXPECT_EQ(SetCamTriggerDelay(hCam, 1500), 0u);
    EXPECT_EQ(FloatNode("TriggerDelay"), 1.5);
    EXPECT_EQ(Read<double>(GetCamTriggerDelay), 1500);
}

TEST_F(OtherMakersTest, SizesKeepTheNodesSteps)
{
    OpenAsItIs(2);
    EXPECT_EQ(SetCamRoi(hCam, 640, 480, 0, 0), 0u);
    EXPECT_EQ(Read<uint32_t>(GetCamSensorWidth), 640u);
    EXPECT_EQ(Read<uint32_t>(GetCamSensorHeight), 480u);
    uint32_t min = 0, max = 0, inc = 0;
    EXPECT_EQ(GetCamWidthMinMax(hCam, &min, &max, &inc), 0u);
    EXPECT_EQ(min, 16u);
    EXPECT_EQ(max, 640u);
    EXPECT_EQ(inc, 8u);
    EXPECT_EQ(SetCamWidth(hCam, 321), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamWidth(hCam, 320), 0u);
    EXPECT_EQ(SetCamOffsetX(hCam, 328), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamOffsetX(hCam, 320), 0u);
    EXPECT_EQ(GetInt(hCam, "OffsetX"), 320);
    EXPECT_EQ(SetCamBinningHorizontal(hCam, 2), 0u);
    EXPECT_EQ(Read<uint32_t>(GetCamSensorWidth), 320u);
    EXPECT_EQ(SetCamBinningHorizontal(hCam, 3), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamBinningHorizontal(hCam, 1), 0u);
}

TEST_F(OtherMakersTest, FormatsAreFoundByTheirNames)
{
    OpenAsItIs(2);
    for (const auto &[format, name] :
         {std::pair{CAM_PIXEL_FORMAT_MONO12, "Mono12"}, std::pair{CAM_PIXEL_FORMAT_BAYERRG8, "BayerRG8"},
          std::pair{CAM_PIXEL_FORMAT_MONO8, "Mono8"}}) {
        EXPECT_EQ(SetCamPixelFormat(hCam, format), 0u) << name;
        EXPECT_EQ(Symbol("PixelFormat"), name);
        EXPECT_EQ(Read<CAM_PIXEL_FORMAT>(GetCamPixelFormat), format) << name;
    }
    EXPECT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_BAYERGB8), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO16), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Symbol("PixelFormat"), "Mono8");
}

TEST_F(OtherMakersTest, WhatTheCameraLacksIsNotImplemented)
{
    OpenAsItIs(2);
    double value = 0;
    uint32_t count = 0;
    bool flag = false;
    EXPECT_EQ(GetCamHue(hCam, &value), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(SetCamSaturation(hCam, 1), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(GetCamSharpness(hCam, &count), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(GetCamTimerDelay(hCam, &value), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(GetCamLineStatusAll(hCam, &count), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(SetCamUserOutputValueAll(hCam, 1), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(SetCamBinningVertical(hCam, 1), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(GetCamReverseY(hCam, &flag), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_OFF), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(ExecuteCamImageBufferRead(hCam), CAM_API_STS_NOT_AVAILABLE);
}

TEST_F(OtherMakersTest, ModesAreTheirAutomaticNodes)
{
    OpenAsItIs(2);
    EXPECT_EQ(SetCamGainAuto(hCam, CAM_GAIN_AUTO_TYPE{2}), 0u);
    EXPECT_EQ(Symbol("GainAuto"), "Continuous");
    EXPECT_EQ(SetCamGainAuto(hCam, CAM_GAIN_AUTO_TYPE{1}), 0u);
    EXPECT_EQ(Symbol("GainAuto"), "Off");
    // A boolean there, a control here.
    EXPECT_EQ(SetCamAcquisitionFrameRateControl(hCam, CAM_ACQ_FRAME_RATE_CONTROL_TYPE{1}), 0u);
    bool isOn = false;
    EXPECT_EQ(Nd_GetBoolValue(hCam, Node(hCam, "AcquisitionFrameRateEnable"), &isOn, false, false), 0u);
    EXPECT_TRUE(isOn);
    EXPECT_EQ(SetCamAcquisitionFrameRateControl(hCam, CAM_ACQ_FRAME_RATE_CONTROL_TYPE{0}), 0u);
    // Without a node for it exposure is manual, for good.
    EXPECT_EQ(Read<CAM_EXPOSURE_TIME_CONTROL_TYPE>(GetCamExposureTimeControl), 1);
    EXPECT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE{2}), CAM_API_STS_NOT_AVAILABLE);
}

TEST_F(OtherMakersTest, ImagesFlowAndTheirShapeIsLockedMeanwhile)
{
    OpenAsItIs(2);
    ASSERT_EQ(SetCamRoi(hCam, 64, 16, 0, 0), 0u);
    RequestChannel channel(hCam, 3);
    EXPECT_EQ(channel.PayloadSize(), 64u * 16);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(channel.Next().info.uiWidth, 64u);
    EXPECT_EQ(GetInt(hCam, "TLParamsLocked"), 1);
    EXPECT_TRUE(Read<bool>(GetCamStreamEnable));
    EXPECT_EQ(SetCamWidth(hCam, 32), CAM_API_STS_NOT_WRITABLE);
    EXPECT_EQ(SetCamGain(hCam, 3), 0u);
    channel.Stop();
    EXPECT_EQ(GetInt(hCam, "TLParamsLocked"), 0);
    EXPECT_EQ(SetCamWidth(hCam, 32), 0u);
}

TEST_F(OtherMakersTest, StreamRegistersAreFoundWhereTheCameraHasThem)
{
    OpenAsItIs(3);
    ASSERT_EQ(SetCamRoi(hCam, 64, 16, 0, 0), 0u);
    ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_RGB8), 0u); // called RGB8Packed there
    EXPECT_EQ(Read<uint32_t>(GetCamStreamPayloadSize), 64u * 16 * 3);
    EXPECT_FALSE(Read<bool>(GetCamStreamEnable));
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_TRUE(Read<bool>(GetCamStreamEnable));
    EXPECT_EQ(channel.Next().size, 64u * 16 * 3);
    channel.Stop();
    EXPECT_FALSE(Read<bool>(GetCamStreamEnable));
}

TEST_F(OtherMakersTest, TriggersBehindASelector)
{
    OpenAsItIs(3);
    ASSERT_EQ(SetCamRoi(hCam, 64, 16, 0, 0), 0u);
    EXPECT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_TYPE{1}), CAM_API_STS_NOT_AVAILABLE);
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_TYPE{6}), 0u);
    EXPECT_EQ(Symbol("TriggerSelector"), "FrameBurstStart");
    EXPECT_EQ(Read<CAM_TRIGGER_SEQUENCE_TYPE>(GetCamTriggerSequence), 6);
    ASSERT_EQ(SetCamTriggerAdditionalParameter(hCam, 3), 0u);
    ASSERT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_SOFTWARE), 0u);
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    RequestChannel channel(hCam, 6);
    channel.EnqueueAll();
    channel.Start();
    ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(channel.Next().info.uiStatus, 0u);
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
    EXPECT_EQ(SetCamTriggerMode(hCam, false), 0u);
    EXPECT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_TYPE{0}), 0u);
    EXPECT_EQ(Symbol("TriggerSelector"), "FrameStart");
}

TEST_F(OtherMakersTest, LinesOneByOneBecomeOneWord)
{
    OpenAsItIs(3);
    SetEnum(hCam, "LineSelector", "Line1");
    EXPECT_EQ(SetCamLineInverterAll(hCam, 0xF), 0u); // of which there are Line0, Line1 and Line3
    EXPECT_EQ(Read<uint32_t>(GetCamLineInverterAll), 0xBu);
    EXPECT_EQ(SetCamLineInverterAll(hCam, 0x8), 0u);
    EXPECT_EQ(Read<uint32_t>(GetCamLineInverterAll), 0x8u);
    EXPECT_EQ(Symbol("LineSelector"), "Line1");
    SetEnum(hCam, "LineMode", "Output");
    EXPECT_EQ(Read<uint32_t>(GetCamLineModeAll), 0x2u);
    EXPECT_EQ(Read<uint32_t>(GetCamLineStatusAll), 0u);
    EXPECT_EQ(SetCamUserOutputValueAll(hCam, 0x2), 0u);
    EXPECT_EQ(Read<uint32_t>(GetCamUserOutputValueAll), 0x2u);
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_TYPE{1}, CAM_LINE_SOURCE_TYPE{0x7B}), 0u);
    EXPECT_EQ(Symbol("LineSource"), "ExposureActive");
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_TYPE{1}, CAM_LINE_SOURCE_TYPE{0x20}), 0u);
    EXPECT_EQ(Symbol("LineSource"), "UserOutput0");
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_TYPE{2}, CAM_LINE_SOURCE_TYPE{0}), CAM_API_STS_NOT_AVAILABLE);
}

TEST_F(OtherMakersTest, UserSetsAndExposureControl)
{
    OpenAsItIs(3);
    ASSERT_EQ(SetCamExposureTime(hCam, 750), 0u);
    ASSERT_EQ(ExecuteCamUserSetSave(hCam, CAM_USER_SET_SELECTOR_TYPE{1}), 0u);
    ASSERT_EQ(SetCamExposureTime(hCam, 2000), 0u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, CAM_USER_SET_SELECTOR_TYPE{1}), 0u);
    EXPECT_EQ(Read<double>(GetCamExposureTime), 750);
    EXPECT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE{2}), 0u);
    EXPECT_EQ(Symbol("ExposureAuto"), "Continuous");
    EXPECT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE{1}), 0u);
}

TEST_F(OtherMakersTest, RegistersOfAnotherMeaningAreNoBlocks)
{
    OpenAsItIs(4);
    // Whole numbers without a unit keep their range.
    EXPECT_EQ(Limits<double>(GetCamGainMinMax), DoublePair(0, 255));
    EXPECT_EQ(SetCamGain(hCam, 100), 0u);
    EXPECT_EQ(GetInt(hCam, "Gain"), 100);
    EXPECT_EQ(Limits<double>(GetCamExposureTimeMinMax), DoublePair(20, 1000000));
    EXPECT_EQ(SetCamExposureTime(hCam, 333), 0u);
    EXPECT_EQ(GetInt(hCam, "ExposureTime"), 333);
    EXPECT_EQ(Limits<double>(GetCamHueMinMax), DoublePair(-180, 180));
    EXPECT_EQ(SetCamHue(hCam, -90), 0u);
    EXPECT_EQ(Read<double>(GetCamHue), -90);
    EXPECT_EQ(SetCamReverseY(hCam, true), 0u);
    EXPECT_TRUE(Read<bool>(GetCamReverseY));
    EXPECT_EQ(SetCamReverseY(hCam, false), 0u);
    // Black level has no limits: thousandths as far as 32 bits reach.
    EXPECT_EQ(SetCamBlackLevel(hCam, 12.125), 0u);
    EXPECT_EQ(Read<double>(GetCamBlackLevel), 12.125);
    EXPECT_EQ(FloatNode("BlackLevel"), 12.125);
    // Between the blocks the camera's own registers can be read.
    EXPECT_EQ(ReadWord(hCam, 0x202040), 0u);

    ASSERT_EQ(SetCamRoi(hCam, 65, 17, 0, 0), 0u);
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
    EXPECT_EQ(channel.Next().size, 65u * 17);
    channel.Stop();
    EXPECT_EQ(SetCamTriggerMode(hCam, false), 0u);
}

} // namespace

} // namespace Orvi::Testing
