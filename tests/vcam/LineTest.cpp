#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class Lines : public Feature {
  protected:
    std::uint32_t Status() { return control_.Read(Block::LineStatus + 0x10); }
    void SetSource(std::uint32_t line, std::uint32_t source)
    {
        control_.Write(Value(Block::LineSelector), line);
        control_.Write(Value(Block::LineSource), source);
    }
    void SetTimer(std::uint32_t timer, std::uint32_t source, std::uint32_t delay, std::uint32_t duration)
    {
        control_.Write(Value(Block::TimerSelector), timer);
        control_.Write(Value(Block::TimerTriggerSource), source);
        control_.Write(Value(Block::TimerDelay), delay);
        control_.Write(Value(Block::TimerDuration), duration);
    }
};

TEST_F(Lines, LinesShowTheirSourcesAndInverter)
{
    const auto status = [&] { return control_.Read(Block::LineStatus + 0x10); };
    control_.Write(Reg::LineLevels, 1);
    EXPECT_EQ(status(), 1u);
    control_.Write(Value(Block::LineSelector), 2);
    control_.Write(Value(Block::LineSource), LineSourceValue::UserOutput);
    control_.Write(Block::UserOutput + 0x10, 4);
    EXPECT_EQ(status(), 5u);
    control_.Write(Block::LineInverter + 0x10, 7);
    EXPECT_EQ(status(), 2u);
    control_.Write(Value(Block::LineSelector), 1);
    EXPECT_EQ(control_.Read(Value(Block::LineSource)), LineSourceValue::Off);
    control_.Write(Block::LineInverter + 0x10, 0);
    control_.Write(Value(Block::LineSource), LineSourceValue::AcquisitionActive);
    stream_.Start();
    EXPECT_EQ(status() & 2, 2u);
    control_.Write(Reg::AcquisitionAbort, 1);
    EXPECT_EQ(status() & 2, 0u);
    EXPECT_EQ(control_.TryWrite(Block::UserOutput + 0x10, 1), InvalidParameter);
    control_.Write(Value(Block::LineSelector), 0);
    EXPECT_EQ(control_.TryWrite(Value(Block::LineSource), LineSourceValue::UserOutput), AccessDenied);
}

TEST_F(Lines, SourceOfAnInputIsNotWritable)
{
    constexpr std::uint32_t writable = 1u << 25;
    for (const auto &[line, isWritable] : {std::pair{0u, false}, {1u, true}, {0u, false}, {2u, true}}) {
        control_.Write(Value(Block::LineSelector), line);
        EXPECT_EQ((control_.Read(Block::LineSource) & writable) != 0, isWritable) << line;
        EXPECT_EQ(control_.TryWrite(Value(Block::LineSource), 0), isWritable ? Success : AccessDenied) << line;
        EXPECT_EQ(control_.Read(Reg::LineModeOne), isWritable ? 1u : 0u);
    }
}

TEST_F(Lines, EverySourceOfALineReadsBack)
{
    for (const std::uint32_t source : {0x00u, 0x11u, 0x20u, 0x40u, 0x41u, 0x63u, 0x6Au, 0x6Bu, 0x73u, 0x7Bu}) {
        SetSource(1, source);
        SetSource(2, 0);
        control_.Write(Value(Block::LineSelector), 1);
        EXPECT_EQ(control_.Read(Value(Block::LineSource)), source);
    }
    EXPECT_EQ(control_.TryWrite(Value(Block::LineSource), 0x42), InvalidParameter);
}

TEST_F(Lines, InverterOfOneLineIsABitOfAll)
{
    control_.Write(Block::LineInverter + 0x10, 4);
    for (std::uint32_t line = 0; line < 3; ++line) {
        control_.Write(Value(Block::LineSelector), line);
        EXPECT_EQ(control_.Read(Reg::LineInverterOne), line == 2 ? 1u : 0u);
        EXPECT_EQ(control_.Read(Reg::LineStatusOne), line == 2 ? 1u : 0u);
        control_.Write(Reg::LineInverterOne, line == 2 ? 0 : 1);
    }
    EXPECT_EQ(control_.Read(Block::LineInverter + 0x10), 3u);
}

TEST_F(Lines, InvertingTheInputIsAnEdge)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSource), 0);
    Begin();
    stream_.Post();
    control_.Write(Block::LineInverter + 0x10, 1);
    EXPECT_EQ(stream_.Take().block, 0u);
}

TEST_F(Lines, TimerShowsOnItsLineAfterItsDelay)
{
    SetTimer(0, TimerSource::Line0, 0, 10000000);
    SetTimer(1, TimerSource::Line0, 10000000, 1);
    SetSource(1, LineSourceValue::Timer0Active);
    SetSource(2, LineSourceValue::Timer1Active);
    EXPECT_EQ(Status(), 0u);
    control_.Write(Reg::LineLevels, 1);
    EXPECT_EQ(Status(), 3u) << "the input and the timer without delay";
}

TEST_F(Lines, TimerEndsAfterItsDuration)
{
    SetTimer(0, TimerSource::Line0, 0, 2000);
    SetSource(1, LineSourceValue::Timer0Active);
    control_.Write(Reg::LineLevels, 1);
    EXPECT_TRUE(Eventually([&] { return Status() == 1; }));
}

TEST_F(Lines, EveryTimerSourceStartsItsTimer)
{
    for (const std::uint32_t source :
         {TimerSource::Line0, TimerSource::FrameTrigger, TimerSource::ExposureStart, TimerSource::ExposureEnd}) {
        camera_->Unplug();
        camera_->Plug();
        SetTimer(1, source, 0, 10000000);
        SetSource(2, LineSourceValue::Timer1Active);
        control_.Write(Value(Block::TriggerMode), 1);
        stream_.Start();
        EXPECT_EQ(Status() & 4, 0u) << source;
        control_.Write(Reg::LineLevels, 1);
        Trigger();
        EXPECT_TRUE(Eventually([&] { return (Status() & 4) != 0; })) << source;
        control_.Write(Reg::AcquisitionAbort, 1);
    }
}

TEST_F(Lines, VerticalDriveIsHighBetweenImages)
{
    SetSource(1, LineSourceValue::VerticalDrive);
    EXPECT_EQ(Status() & 2, 0u);
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), s_widthSequence);
    stream_.Start();
    EXPECT_EQ(Status() & 2, 2u);
    control_.Write(Value(Block::SoftwareTrigger), SoftwareTriggerValue::Active);
    EXPECT_TRUE(Eventually([&] { return (Status() & 2) == 0; }));
}

} // namespace
} // namespace Orvi::Vcam::Test
