// Triggers: by software and by edges of Line0, with delay, as bursts and as exposures of their own length.

#include "tests/effects/EffectTest.h"

#include <chrono>
#include <thread>

namespace Orvi::Testing {
namespace {

class TriggerEffectTest : public EffectTest {
  protected:
    TriggerEffectTest() { EXPECT_EQ(SetCamTriggerMode(hCam, true), 0u); }
    void UseLine0() { EXPECT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_LINE0), 0u); }
    void SetLine0(bool level) { WriteWord(hCam, Virtual::lineLevels, level ? 1 : 0); }
    /// The next image, which nothing but the last trigger has brought.
    void ExpectImage(RequestChannel &channel, uint64_t block)
    {
        const Picture picture = Copy(channel.Next());
        EXPECT_EQ(picture.info.ullBlockId, block);
        ExpectPicture(picture);
    }
    /// The same with a delay behind the trigger.
    template <class Trigger>
    void ExpectDelayedImage(RequestChannel &channel, uint64_t block, const Trigger &trigger)
    {
        ASSERT_EQ(SetCamTriggerDelay(hCam, 40000), 0u);
        const uint64_t before = DeviceTime();
        trigger();
        const Picture picture = Copy(channel.Next());
        EXPECT_GE(picture.info.ullDeviceTimestamp, before + 40'000'000);
        EXPECT_EQ(picture.info.ullBlockId, block);
        ExpectPicture(picture);
        ASSERT_EQ(SetCamTriggerDelay(hCam, 0), 0u);
    }
};

TEST_F(TriggerEffectTest, SoftwareTriggerBringsOneImage)
{
    RequestChannel channel(hCam, 4);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_FALSE(channel.TryNext()) << "no image without a trigger";
    for (uint64_t block = 0; block < 3; ++block) {
        ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
        ExpectImage(channel, block);
    }
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
}

TEST_F(TriggerEffectTest, SwitchedOffImagesComeByThemselves)
{
    ASSERT_EQ(SetCamTriggerMode(hCam, false), 0u);
    bool isOn = true;
    EXPECT_EQ(GetCamTriggerMode(hCam, &isOn), 0u);
    EXPECT_FALSE(isOn);
    ExpectPicture();
}

TEST_F(TriggerEffectTest, EdgesOfLine0TriggerByTheirDirection)
{
    UseLine0();
    RequestChannel channel(hCam, 8);
    channel.EnqueueAll();
    channel.Start();
    SetLine0(true);
    ExpectImage(channel, 0);
    SetLine0(true); // no edge
    SetLine0(false);
    SetLine0(true);
    ExpectImage(channel, 1); // and no image in between
    ASSERT_EQ(SetCamTriggerActivation(hCam, CAM_TRIGGER_ACTIVATION_FALLING_EDGE), 0u);
    SetLine0(false);
    ExpectImage(channel, 2);
    SetLine0(true);
    ASSERT_EQ(SetCamLineInverterAll(hCam, 1), 0u); // turns the level, and so the edges, round
    ExpectImage(channel, 3);
    SetLine0(false);
    SetLine0(true);
    ExpectImage(channel, 4);
    channel.Stop();
}

TEST_F(TriggerEffectTest, OtherSourcesDoNotTrigger)
{
    RequestChannel channel(hCam, 4);
    channel.EnqueueAll();
    channel.Start();
    // An image of the wrong source would come before that of the delayed one.
    SetLine0(true);
    ExpectDelayedImage(channel, 0, [&] { ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u); });
    UseLine0();
    ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
    SetLine0(false);
    ExpectDelayedImage(channel, 1, [&] { SetLine0(true); });
    channel.Stop();
    for (const auto missing : {CAM_TRIGGER_SOURCE_LINE1, CAM_TRIGGER_SOURCE_LINE2, CAM_TRIGGER_SOURCE_TYPE(127)})
        EXPECT_EQ(SetCamTriggerSource(hCam, missing), CAM_API_STS_NOT_AVAILABLE) << missing;
    CAM_TRIGGER_SOURCE_TYPE source{};
    EXPECT_EQ(GetCamTriggerSource(hCam, &source), 0u);
    EXPECT_EQ(source, CAM_TRIGGER_SOURCE_LINE0);
}

TEST_F(TriggerEffectTest, DelayLiesBetweenTriggerAndImage)
{
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    ExpectDelayedImage(channel, 0, [&] { ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u); });
    channel.Stop();
    double min = 0, max = 0;
    ASSERT_EQ(GetCamTriggerDelayMinMax(hCam, &min, &max), 0u);
    EXPECT_DOUBLE_EQ(max, 10'000'000) << "in microseconds";
    EXPECT_EQ(SetCamTriggerDelay(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(TriggerEffectTest, BurstTakesAsManyImagesAsTheParameterSays)
{
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_6), 0u);
    ASSERT_EQ(SetCamTriggerAdditionalParameter(hCam, 3), 0u);
    EXPECT_EQ(GetInt(hCam, "AcquisitionBurstFrameCount"), 3);
    RequestChannel channel(hCam, 8);
    channel.EnqueueAll();
    channel.Start();
    for (uint64_t trigger = 0; trigger < 2; ++trigger) {
        ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
        for (uint64_t image = 0; image < 3; ++image)
            ExpectImage(channel, 3 * trigger + image);
    }
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
    // Without the sequence of bursts it is one image all the same.
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_0), 0u);
    channel.Start(); // two requests are left
    const auto trigger = [&] { ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u); };
    ExpectDelayedImage(channel, 0, trigger);
    ExpectDelayedImage(channel, 1, trigger);
    channel.Stop();
    uint32_t min = 0, max = 0;
    ASSERT_EQ(GetCamTriggerAdditionalParameterMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(std::pair(min, max), std::pair(1u, 255u));
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hCam, 256), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(TriggerEffectTest, WidthOfTheTriggerIsTheExposure)
{
    UseLine0();
    ASSERT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_1), 0u);
    EXPECT_EQ(EnumNode("ExposureMode"), "TriggerWidth");
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    SetLine0(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(channel.TryNext()) << "it is still exposed";
    SetLine0(false);
    const Picture picture = Copy(channel.Next());
    settings_.exposure = ReadWord(hCam, Virtual::lastExposure);
    EXPECT_GE(settings_.exposure, 5000u);
    ExpectPicture(picture);
    channel.Stop();
}

TEST_F(TriggerEffectTest, SequenceIsOneStateWithModeAndSelector)
{
    const struct {
        CAM_TRIGGER_SEQUENCE_TYPE sequence;
        const char *mode, *selector, *name;
    } rows[] = {{CAM_TRIGGER_SEQUENCE_1, "TriggerWidth", "FrameStart", "TriggerSequence1"},
                {CAM_TRIGGER_SEQUENCE_6, "Timed", "FrameBurstStart", "TriggerSequence6"},
                {CAM_TRIGGER_SEQUENCE_0, "Timed", "FrameStart", "TriggerSequence0"}};
    for (const auto &row : rows) {
        ASSERT_EQ(SetCamTriggerSequence(hCam, row.sequence), 0u);
        EXPECT_EQ(EnumNode("ExposureMode"), row.mode);
        EXPECT_EQ(EnumNode("TriggerSelector"), row.selector);
        EXPECT_EQ(EnumNode("TriggerSequence"), row.name);
    }
    CAM_TRIGGER_SEQUENCE_TYPE sequence{};
    SetEnum(hCam, "TriggerSelector", "FrameBurstStart");
    EXPECT_EQ(GetCamTriggerSequence(hCam, &sequence), 0u);
    EXPECT_EQ(sequence, CAM_TRIGGER_SEQUENCE_6);
    SetEnum(hCam, "ExposureMode", "TriggerWidth");
    EXPECT_EQ(GetCamTriggerSequence(hCam, &sequence), 0u);
    EXPECT_EQ(sequence, CAM_TRIGGER_SEQUENCE_1);
    EXPECT_EQ(SetCamTriggerSequence(hCam, CAM_TRIGGER_SEQUENCE_TYPE(2)), CAM_API_STS_NOT_AVAILABLE);
}

} // namespace
} // namespace Orvi::Testing
