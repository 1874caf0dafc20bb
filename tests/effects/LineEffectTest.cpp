// Lines, inverter, user outputs, what lines show, and timers.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

class LineEffectTest : public EffectTest {
  protected:
    static constexpr uint32_t line0 = 1, line1 = 2, line2 = 4;
    void SetSource(CAM_LINE_SELECTOR_TYPE line, CAM_LINE_SOURCE_TYPE source)
    {
        ASSERT_EQ(SetCamLineSource(hCam, line, source), 0u);
    }
    void SetLine0(bool level) { WriteWord(hCam, Virtual::lineLevels, level ? 1 : 0); }
    /// A timer that runs ends with a short run; the next one is long.
    void EndTimer()
    {
        ASSERT_EQ(SetCamTimerDuration(hCam, 1), 0u);
        ASSERT_EQ(SetCamTimerTriggerSource(hCam, CAM_TIMER_TRIGGER_SOURCE_LINE0_ACTIVE), 0u);
        SetLine0(true);
        SetLine0(false);
        ASSERT_TRUE(Eventually([&] { return (LineStatus() & line1) == 0; }));
        ASSERT_EQ(SetCamTimerDuration(hCam, 10'000'000), 0u);
    }
};

TEST_F(LineEffectTest, ModesTellInputsFromOutputs)
{
    uint32_t modes = 0;
    ASSERT_EQ(GetCamLineModeAll(hCam, &modes), 0u);
    EXPECT_EQ(modes, line1 | line2) << "Line0 is the input";
    EXPECT_EQ(GetInt(hCam, "LineModeAll"), 6);
    SetEnum(hCam, "LineSelector", "Line0");
    EXPECT_EQ(EnumNode("LineMode"), "Input");
    SetEnum(hCam, "LineSelector", "Line2");
    EXPECT_EQ(EnumNode("LineMode"), "Output");
}

TEST_F(LineEffectTest, StatusShowsTheInputBehindTheInverter)
{
    EXPECT_EQ(LineStatus(), 0u);
    SetLine0(true);
    EXPECT_EQ(LineStatus(), line0);
    ASSERT_EQ(SetCamLineInverterAll(hCam, line0 | line2), 0u);
    EXPECT_EQ(LineStatus(), line2);
    SetLine0(false);
    EXPECT_EQ(LineStatus(), line0 | line2);
    EXPECT_EQ(GetInt(hCam, "LineStatusAll"), line0 | line2);
    SetEnum(hCam, "LineSelector", "Line2");
    EXPECT_TRUE(BoolNode("LineInverter"));
    EXPECT_TRUE(BoolNode("LineStatus"));
    SetBoolNode("LineInverter", false);
    uint32_t inverted = 0;
    EXPECT_EQ(GetCamLineInverterAll(hCam, &inverted), 0u);
    EXPECT_EQ(inverted, line0);
}

TEST_F(LineEffectTest, LinesThatTheCameraLacksAreDropped)
{
    ASSERT_EQ(SetCamLineInverterAll(hCam, 0xFFFFFFFF), 0u);
    ASSERT_EQ(SetCamUserOutputValueAll(hCam, 0xFFFFFFFF), 0u);
    uint32_t inverted = 0, outputs = 0;
    EXPECT_EQ(GetCamLineInverterAll(hCam, &inverted), 0u);
    EXPECT_EQ(GetCamUserOutputValueAll(hCam, &outputs), 0u);
    EXPECT_EQ(inverted, line0 | line1 | line2);
    EXPECT_EQ(outputs, line1 | line2) << "an input has no output value";
}

TEST_F(LineEffectTest, UserOutputsAreSeenOnTheLinesThatShowThem)
{
    ASSERT_EQ(SetCamUserOutputValueAll(hCam, line1 | line2), 0u);
    EXPECT_EQ(LineStatus(), 0u) << "no line shows them";
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_USER_OUTPUT);
    EXPECT_EQ(LineStatus(), line1);
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_USER_OUTPUT);
    ASSERT_EQ(SetCamUserOutputValueAll(hCam, line2), 0u);
    EXPECT_EQ(LineStatus(), line2);
    EXPECT_EQ(GetInt(hCam, "UserOutputValueAll"), line2);
    SetInt(hCam, "UserOutputValueAll", line1);
    EXPECT_EQ(LineStatus(), line1);
}

TEST_F(LineEffectTest, EveryOutputHasItsOwnSource)
{
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_EXPOSURE_ACTIVE);
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_VD);
    CAM_LINE_SOURCE_TYPE source{};
    EXPECT_EQ(GetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE1, &source), 0u);
    EXPECT_EQ(source, CAM_LINE_SOURCE_EXPOSURE_ACTIVE);
    EXPECT_EQ(EnumNode("LineSelector"), "Line1") << "reading selects, too";
    EXPECT_EQ(GetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE2, &source), 0u);
    EXPECT_EQ(source, CAM_LINE_SOURCE_VD);
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE0, CAM_LINE_SOURCE_OFF), CAM_API_STS_NOT_WRITABLE)
        << "an input shows nothing";
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_TYPE(3), CAM_LINE_SOURCE_OFF), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(SetCamLineSource(hCam, CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_TYPE(1)), CAM_API_STS_NOT_AVAILABLE);
}

TEST_F(LineEffectTest, LinesFollowTheAcquisition)
{
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_ACQUISITION_ACTIVE);
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_FRAME_TRIGGER_WAIT);
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    EXPECT_EQ(LineStatus(), 0u);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_TRUE(Eventually([&] { return LineStatus() == (line1 | line2); }));
    channel.Stop();
    EXPECT_TRUE(Eventually([&] { return LineStatus() == 0; }));
}

TEST_F(LineEffectTest, LinesFollowTheExposure)
{
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    ASSERT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_LINE0), 0u);
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_1), 0u);
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_EXPOSURE_ACTIVE);
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_VD);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_TRUE(Eventually([&] { return LineStatus() == line2; })) << "between the images";
    SetLine0(true); // the exposure lasts as long as this
    EXPECT_TRUE(Eventually([&] { return LineStatus() == (line0 | line1); }));
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_FRAME_TRIGGER_WAIT);
    EXPECT_EQ(LineStatus(), line0 | line1) << "no trigger is waited for";
    SetSource(CAM_LINE_SELECTOR_LINE2, CAM_LINE_SOURCE_FRAME_ACTIVE);
    EXPECT_EQ(LineStatus(), line0 | line1 | line2);
    SetLine0(false);
    channel.Next();
    EXPECT_TRUE(Eventually([&] { return LineStatus() == 0; }));
    channel.Stop();
}

TEST_F(LineEffectTest, LineFollowsTheTransfer)
{
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_FRAME_TRANSFER_ACTIVE);
    ASSERT_EQ(SetCamImageBufferMode(hCam, CAM_IMAGE_BUFFER_MODE_ON), 0u);
    RequestChannel channel(hCam, 1);
    channel.Start(); // nothing is posted: a transfer waits
    EXPECT_TRUE(Eventually([&] { return ExecuteCamImageBufferRead(hCam) == 0 && LineStatus() == line1; }));
    channel.EnqueueAll();
    EXPECT_EQ(channel.Next().info.uiStatus, 0u);
    channel.Stop();
    EXPECT_TRUE(Eventually([&] { return LineStatus() == 0; }));
}

TEST_F(LineEffectTest, TimerRunsAfterItsTrigger)
{
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_TIMER0_ACTIVE);
    ASSERT_EQ(SetCamTimerTriggerSource(hCam, CAM_TIMER_TRIGGER_SOURCE_LINE0_ACTIVE), 0u);
    double min = 0, max = 0, value = 0;
    ASSERT_EQ(GetCamTimerDelayMinMax(hCam, &min, &max), 0u);
    EXPECT_DOUBLE_EQ(max, 10'000'000) << "in microseconds";
    EXPECT_EQ(SetCamTimerDelay(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
    ASSERT_EQ(SetCamTimerDelay(hCam, max), 0u);
    ASSERT_EQ(GetCamTimerDurationMinMax(hCam, &min, &max), 0u);
    ASSERT_EQ(SetCamTimerDuration(hCam, max), 0u);
    EXPECT_EQ(GetCamTimerDuration(hCam, &value), 0u);
    EXPECT_DOUBLE_EQ(value, max);
    SetLine0(true);
    EXPECT_EQ(LineStatus(), line0) << "it waits for its delay";
    SetLine0(false);
    ASSERT_EQ(SetCamTimerDelay(hCam, 0), 0u);
    SetLine0(true);
    EXPECT_EQ(LineStatus(), line0 | line1);
    SetLine0(false);
    EXPECT_EQ(LineStatus(), line1) << "for its duration, whatever the line does";
    ASSERT_EQ(SetCamTimerDuration(hCam, 1), 0u);
    SetLine0(true);
    EXPECT_TRUE(Eventually([&] { return LineStatus() == line0; }));
}

TEST_F(LineEffectTest, TimerStartsWithWhatItIsTold)
{
    const struct {
        CAM_TIMER_TRIGGER_SOURCE_TYPE source;
        bool whileDelayed, whileExposed, behind; ///< whether the timer has started
    } rows[] = {{CAM_TIMER_TRIGGER_SOURCE_OFF, false, false, false},
                {CAM_TIMER_TRIGGER_SOURCE_LINE0_ACTIVE, true, true, true},
                {CAM_TIMER_TRIGGER_SOURCE_FRAME_TRIGGER, true, true, true},
                {CAM_TIMER_TRIGGER_SOURCE_EXPOSURE_START, false, true, true},
                {CAM_TIMER_TRIGGER_SOURCE_EXPOSURE_END, false, false, true}};
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    ASSERT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_LINE0), 0u);
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_1), 0u); // exposed as long as the line is high
    SetSource(CAM_LINE_SELECTOR_LINE1, CAM_LINE_SOURCE_TIMER0_ACTIVE);
    const auto isRunning = [&] { return (LineStatus() & line1) != 0; };
    const auto await = [&](CAM_LINE_SOURCE_TYPE source) {
        SetSource(CAM_LINE_SELECTOR_LINE2, source);
        ASSERT_TRUE(Eventually([&] { return (LineStatus() & line2) != 0; }));
    };
    for (const auto &row : rows)
        for (const bool isDelayed : {true, false}) {
            EndTimer();
            ASSERT_EQ(SetCamTimerTriggerSource(hCam, row.source), 0u);
            ASSERT_EQ(SetCamTriggerDelay(hCam, isDelayed ? 10'000'000 : 0), 0u);
            RequestChannel channel(hCam, 2);
            channel.EnqueueAll();
            channel.Start();
            await(CAM_LINE_SOURCE_FRAME_TRIGGER_WAIT);
            EXPECT_FALSE(isRunning()) << row.source;
            SetLine0(true);
            if (isDelayed) {
                EXPECT_EQ(isRunning(), row.whileDelayed) << row.source;
            } else {
                await(CAM_LINE_SOURCE_EXPOSURE_ACTIVE);
                EXPECT_EQ(isRunning(), row.whileExposed) << row.source;
                SetLine0(false);
                EXPECT_EQ(channel.Next().info.uiStatus, 0u);
                EXPECT_EQ(isRunning(), row.behind) << row.source;
            }
            SetLine0(false);
            channel.Stop();
        }
    EXPECT_EQ(SetCamTimerTriggerSource(hCam, CAM_TIMER_TRIGGER_SOURCE_TYPE(0x6D)), CAM_API_STS_NOT_AVAILABLE);
}

} // namespace
} // namespace Orvi::Testing
