// Functions and nodes see one state: choices, names, and what lies behind selectors.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

class RoadChoiceTest : public EffectTest {
  protected:
    /// Sets by function and reads by node, and the other way round.
    template <class T>
    void ExpectOneState(const char *node, CAM_API_STATUS (*set)(CAM_HANDLE, T), CAM_API_STATUS (*get)(CAM_HANDLE, T *),
                        std::pair<T, const char *> first, std::pair<T, const char *> second)
    {
        SCOPED_TRACE(node);
        EXPECT_EQ(set(hCam, first.first), 0u);
        EXPECT_EQ(EnumNode(node), first.second);
        SetEnum(hCam, node, second.second);
        T value = first.first;
        EXPECT_EQ(get(hCam, &value), 0u);
        EXPECT_EQ(value, second.first);
    }
    std::string Text(const char *node) const
    {
        char text[64] = "";
        uint32_t size = sizeof text;
        EXPECT_EQ(Nd_GetStrValue(hCam, Node(hCam, node), text, &size, false, false), 0u);
        return text;
    }
};

// clang-format off
TEST_F(RoadChoiceTest, ImageFormat)
{
    ExpectOneState<CAM_IMAGE_FORMAT_SELECTOR_TYPE>("ImageFormatSelector", SetCamImageFormatSelector, GetCamImageFormatSelector,
        {CAM_IMAGE_FORMAT_SELECTOR_FORMAT2, "Format2"}, {CAM_IMAGE_FORMAT_SELECTOR_FORMAT0, "Format0"});
    ExpectOneState<CAM_PIXEL_FORMAT>("PixelFormat", SetCamPixelFormat, GetCamPixelFormat,
        {CAM_PIXEL_FORMAT_BAYERGR10, "BayerGR10"}, {CAM_PIXEL_FORMAT_BGR8, "BGR8"});
    for (const char *const node : {"TestPattern", "TestImageSelector"})
        ExpectOneState<CAM_TEST_PATTERN_TYPE>(node, SetCamTestPattern, GetCamTestPattern,
            {CAM_TEST_PATTERN_COLOR_BAR, "ColorBar"}, {CAM_TEST_PATTERN_VERTICAL_RAMP, "GreyVerticalRamp"});
}

TEST_F(RoadChoiceTest, AcquisitionAndTriggers)
{
    ExpectOneState<CAM_ACQ_FRAME_RATE_CONTROL_TYPE>("AcquisitionFrameRateControl", SetCamAcquisitionFrameRateControl, GetCamAcquisitionFrameRateControl,
        {CAM_ACQ_FRAME_RATE_CONTROL_NO_SPECIFY, "NoSpecify"}, {CAM_ACQ_FRAME_RATE_CONTROL_MANUAL, "Manual"});
    ExpectOneState<CAM_IMAGE_BUFFER_MODE_TYPE>("ImageBufferMode", SetCamImageBufferMode, GetCamImageBufferMode,
        {CAM_IMAGE_BUFFER_MODE_ON, "On"}, {CAM_IMAGE_BUFFER_MODE_OFF, "Off"});
    ExpectOneState<bool>("TriggerMode", SetCamTriggerMode, GetCamTriggerMode, {true, "On"}, {false, "Off"});
    ExpectOneState<CAM_TRIGGER_SEQUENCE_TYPE>("TriggerSequence", SetCamTriggerSequence, GetCamTriggerSequence,
        {CAM_TRIGGER_SEQUENCE_6, "TriggerSequence6"}, {CAM_TRIGGER_SEQUENCE_1, "TriggerSequence1"});
    ExpectOneState<CAM_TRIGGER_SOURCE_TYPE>("TriggerSource", SetCamTriggerSource, GetCamTriggerSource,
        {CAM_TRIGGER_SOURCE_LINE0, "Line0"}, {CAM_TRIGGER_SOURCE_SOFTWARE, "Software"});
    ExpectOneState<CAM_TRIGGER_ACTIVATION_TYPE>("TriggerActivation", SetCamTriggerActivation, GetCamTriggerActivation,
        {CAM_TRIGGER_ACTIVATION_FALLING_EDGE, "FallingEdge"}, {CAM_TRIGGER_ACTIVATION_RISING_EDGE, "RisingEdge"});
    ExpectOneState<CAM_FRAME_SYNCHRONIZATION_TYPE>("FrameSynchronization", SetCamFrameSynchronization, GetCamFrameSynchronization,
        {CAM_FRAME_SYNCHRONIZATION_BUS, "Bus"}, {CAM_FRAME_SYNCHRONIZATION_OFF, "Off"});
    ExpectOneState<CAM_TIMER_TRIGGER_SOURCE_TYPE>("TimerTriggerSource", SetCamTimerTriggerSource, GetCamTimerTriggerSource,
        {CAM_TIMER_TRIGGER_SOURCE_EXPOSURE_END, "ExposureEnd"}, {CAM_TIMER_TRIGGER_SOURCE_FRAME_TRIGGER, "FrameTrigger"});
}

TEST_F(RoadChoiceTest, AutomaticModes)
{
    ExpectOneState<CAM_EXPOSURE_TIME_CONTROL_TYPE>("ExposureAuto", SetCamExposureTimeControl, GetCamExposureTimeControl,
        {CAM_EXPOSURE_TIME_CONTROL_AUTO, "Continuous"}, {CAM_EXPOSURE_TIME_CONTROL_MANUAL, "Off"});
    ExpectOneState<CAM_EXPOSURE_TIME_CONTROL_TYPE>("ExposureTimeControl", SetCamExposureTimeControl, GetCamExposureTimeControl,
        {CAM_EXPOSURE_TIME_CONTROL_AUTO, "Auto"}, {CAM_EXPOSURE_TIME_CONTROL_MANUAL, "Manual"});
    ExpectOneState<CAM_GAIN_AUTO_TYPE>("GainAuto", SetCamGainAuto, GetCamGainAuto,
        {CAM_GAIN_AUTO_CONTINUOUS, "Continuous"}, {CAM_GAIN_AUTO_OFF, "Off"});
    ExpectOneState<CAM_BALANCE_WHITE_AUTO_TYPE>("BalanceWhiteAuto", SetCamBalanceWhiteAuto, GetCamBalanceWhiteAuto,
        {CAM_BALANCE_WHITE_AUTO_ONCE, "Once"}, {CAM_BALANCE_WHITE_AUTO_OFF, "Off"});
}
// clang-format on

TEST_F(RoadChoiceTest, LineSourceOfTheSelectedLine)
{
    ASSERT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_TIMER0_ACTIVE), 0u);
    EXPECT_EQ(EnumNode("LineSelector"), "Line2");
    EXPECT_EQ(EnumNode("LineSource"), "Timer0Active");
    SetEnum(hCam, "LineSelector", "Line1");
    EXPECT_EQ(EnumNode("LineSource"), "Off");
    SetEnum(hCam, "LineSource", "FrameTransferActive");
    CAM_LINE_SOURCE_TYPE source{};
    EXPECT_EQ(GetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE1, &source), 0u);
    EXPECT_EQ(source, CAM_LINE_SOURCE_FRAME_TRANSFER_ACTIVE);
}

TEST_F(RoadChoiceTest, BalanceRatioOfTheSelectedColour)
{
    ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, 1.25), 0u);
    EXPECT_EQ(EnumNode("BalanceRatioSelector"), "Blue");
    EXPECT_DOUBLE_EQ(FloatNode("BalanceRatio"), 1.25);
    SetEnum(hCam, "BalanceRatioSelector", "Red");
    EXPECT_DOUBLE_EQ(FloatNode("BalanceRatio"), 1);
    SetFloat(hCam, "BalanceRatio", 0.75);
    double ratio = 0, min = 0, max = 0;
    EXPECT_EQ(GetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, &ratio), 0u);
    EXPECT_DOUBLE_EQ(ratio, 0.75);
    EXPECT_EQ(GetCamBalanceRatioMinMax(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, &min, &max), 0u);
    EXPECT_EQ(std::pair(min, max), std::pair(0.25, 4.0));
}

TEST_F(RoadChoiceTest, MatrixElementOfTheSelectedColours)
{
    ASSERT_EQ(SetCamColorCorrectionMatrix(hCam, CAM_COLOR_CORRECTION_MATRIX_BG, -0.25), 0u);
    EXPECT_EQ(EnumNode("ColorCorrectionMatrixSelectorI"), "B");
    EXPECT_EQ(EnumNode("ColorCorrectionMatrixSelectorJ"), "G");
    EXPECT_DOUBLE_EQ(FloatNode("ColorCorrectionMatrix"), -0.25);
    SetEnum(hCam, "ColorCorrectionMatrixSelectorI", "R");
    SetFloat(hCam, "ColorCorrectionMatrix", 0.125);
    double element = 0, min = 0, max = 0;
    EXPECT_EQ(GetCamColorCorrectionMatrix(hCam, CAM_COLOR_CORRECTION_MATRIX_RG, &element), 0u);
    EXPECT_DOUBLE_EQ(element, 0.125);
    EXPECT_EQ(GetCamColorCorrectionMatrixMinMax(hCam, CAM_COLOR_CORRECTION_MATRIX_RG, &min, &max), 0u);
    EXPECT_EQ(std::pair(min, max), std::pair(-2.0, 2.0));
}

TEST_F(RoadChoiceTest, EntriesOfTables)
{
    ASSERT_EQ(SetCamLutValue(hCam, 1023, 11), 0u);
    EXPECT_EQ(GetInt(hCam, "LUTIndex"), 1023);
    EXPECT_EQ(GetInt(hCam, "LUTValue"), 11);
    EXPECT_EQ(GetInt(hCam, "LUTEntry"), 11);
    SetInt(hCam, "LUTEntry", 12);
    uint32_t value = 0, x = 0, y = 0;
    EXPECT_EQ(GetCamLutValue(hCam, 1023, &value), 0u);
    EXPECT_EQ(value, 12u);

    ASSERT_EQ(SetCamSequentialShutterEntry(hCam, 16, 21), 0u);
    EXPECT_EQ(GetInt(hCam, "SequentialShutterIndex"), 16);
    EXPECT_EQ(GetInt(hCam, "SequentialShutterEntry"), 21);
    SetInt(hCam, "SequentialShutterEntry", 22);
    EXPECT_EQ(GetCamSequentialShutterEntry(hCam, 16, &value), 0u);
    EXPECT_EQ(value, 22u);

    SetInt(hCam, "DPCIndex", 31);
    SetInt(hCam, "DPCEntryX", 1);
    SetInt(hCam, "DPCEntryY", 2);
    SetInt(hCam, "DPCIndex", 0);
    EXPECT_EQ(GetCamDpcPosition(hCam, 31, &x, &y), 0u);
    EXPECT_EQ(std::pair(x, y), std::pair(1u, 2u));
    EXPECT_EQ(GetInt(hCam, "DPCIndex"), 31);
}

TEST_F(RoadChoiceTest, Name)
{
    ASSERT_EQ(SetCamUserDefinedName(hCam, "left"), 0u);
    EXPECT_EQ(Text("UserDefinedName"), "left");
    EXPECT_EQ(Text("DeviceUserID"), "left");
    ASSERT_EQ(Nd_SetStrValue(hCam, Node(hCam, "DeviceUserID"), "right", true), 0u);
    char name[64] = "";
    uint32_t size = sizeof name;
    ASSERT_EQ(GetCamUserDefinedName(hCam, name, &size), 0u);
    EXPECT_STREQ(name, "right");
    const std::string longest(63, 'x');
    ASSERT_EQ(SetCamUserDefinedName(hCam, longest.c_str()), 0u);
    EXPECT_EQ(Text("UserDefinedName"), longest);
    EXPECT_EQ(SetCamUserDefinedName(hCam, std::string(64, 'x').c_str()), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Text("UserDefinedName"), longest);
    EXPECT_EQ(SetCamUserDefinedName(hCam, ""), 0u);
}

TEST_F(RoadChoiceTest, StreamEnable)
{
    bool isEnabled = true;
    EXPECT_EQ(GetCamStreamEnable(hCam, &isEnabled), 0u);
    EXPECT_FALSE(isEnabled);
    EXPECT_FALSE(BoolNode("StreamEnable"));
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(GetCamStreamEnable(hCam, &isEnabled), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_TRUE(BoolNode("StreamEnable"));
    channel.Stop();
}

} // namespace
} // namespace Orvi::Testing
