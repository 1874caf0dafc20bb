#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class Trigger : public Feature {
  protected:
    void Software(std::uint32_t value) { control_.Write(Value(Block::SoftwareTrigger), value); }
    void Fire() { Software(SoftwareTriggerValue::Impulse); }
};

TEST_F(Trigger, SoftwareTriggerTakesOneImageEach)
{
    control_.Write(Value(Block::TriggerMode), 1);
    Begin();
    stream_.Post();
    stream_.Post();
    Fire();
    EXPECT_EQ(stream_.Take().block, 0u);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(control_.Read(Value(Block::SoftwareTrigger)), 0u);
    Fire();
    EXPECT_EQ(stream_.Take().block, 1u);
    ExpectNoImage();
}

TEST_F(Trigger, TriggerSequence6TakesABurst)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), 6);
    control_.Write(Value(Block::TriggerParameter), 3);
    Begin();
    for (int i = 0; i < 3; ++i) {
        stream_.Post();
    }
    Fire();
    for (std::uint64_t block = 0; block < 3; ++block) {
        EXPECT_EQ(stream_.Take().block, block);
    }
    ExpectNoImage();
}

TEST_F(Trigger, TriggerDelayPutsTheImageOff)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerDelay), 50000);
    Begin();
    stream_.Post();
    control_.Write(Reg::TimestampLatch, 1);
    Fire();
    EXPECT_GE(stream_.Take().time, control_.ReadLong(Reg::Timestamp) + 50000000);
}

TEST_F(Trigger, EdgeOfLine0TriggersAsActivated)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSource), 0);
    control_.Write(Reg::TriggerActivation, 0);
    Begin();
    stream_.Post();
    Fire(); // not the source
    control_.Write(Reg::LineLevels, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(control_.Read(Reg::DroppedBlocks), 0u);
    control_.Write(Reg::LineLevels, 0);
    EXPECT_EQ(stream_.Take().block, 0u);
}

TEST_F(Trigger, SequenceModeAndSelectorAreOneState)
{
    // What is written, and what sequence, exposure mode and trigger selector read afterwards.
    const struct {
        std::uint64_t address;
        std::uint32_t value, sequence, mode, selector;
    } steps[] = {
        {Value(Block::TriggerSequence), 1, 1, 1, 0},
        {Value(Block::TriggerSequence), 6, 6, 0, 1},
        {Reg::ExposureMode, 1, 1, 1, 0},
        {Reg::TriggerSelector, 0, 1, 1, 0},
        {Reg::ExposureMode, 0, 0, 0, 0},
        {Reg::TriggerSelector, 1, 6, 0, 1},
        {Reg::ExposureMode, 0, 6, 0, 1},
        {Reg::TriggerSelector, 0, 0, 0, 0},
    };
    for (const auto &step : steps) {
        control_.Write(step.address, step.value);
        EXPECT_EQ(control_.Read(Value(Block::TriggerSequence)), step.sequence);
        EXPECT_EQ(control_.Read(Reg::ExposureMode), step.mode);
        EXPECT_EQ(control_.Read(Reg::TriggerSelector), step.selector);
    }
}

TEST_F(Trigger, TriggerSequence1ExposesAsLongAsTheSoftwareTriggerIsActive)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), s_widthSequence);
    Begin();
    stream_.Post();
    Software(SoftwareTriggerValue::Active);
    EXPECT_EQ(control_.Read(Value(Block::SoftwareTrigger)), SoftwareTriggerValue::Active);
    std::this_thread::sleep_for(std::chrono::milliseconds(12));
    Software(SoftwareTriggerValue::Inactive);
    const Frame frame = stream_.Take();
    settings_.exposure = control_.Read(Reg::LastExposure);
    EXPECT_GE(settings_.exposure, 12000u);
    ExpectImage(frame, settings_);
}

TEST_F(Trigger, TriggerSequence1ExposesAsLongAsTheLineIsActive)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), s_widthSequence);
    control_.Write(Value(Block::TriggerSource), 0);
    Begin();
    stream_.Post();
    control_.Write(Reg::LineLevels, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    control_.Write(Reg::LineLevels, 0);
    const Frame frame = stream_.Take();
    settings_.exposure = control_.Read(Reg::LastExposure);
    EXPECT_GE(settings_.exposure, 3000u);
    ExpectImage(frame, settings_);
    ExpectNoImage();
}

TEST_F(Trigger, ImpulseExposesAsShortAsTheSensorCan)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), s_widthSequence);
    Begin();
    stream_.Post();
    Fire();
    settings_.exposure = 20;
    ExpectImage(stream_.Take(), settings_);
}

TEST_F(Trigger, SwitchingTriggersOffEndsAnExposureThatWaitsForItsTrigger)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), s_widthSequence);
    Begin();
    stream_.Post();
    Software(SoftwareTriggerValue::Active);
    control_.Write(Value(Block::TriggerMode), 0);
    EXPECT_EQ(stream_.Take().block, 0u);
}

} // namespace
} // namespace Orvi::Vcam::Test
