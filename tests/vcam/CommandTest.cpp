#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class Commands : public Feature {};

TEST_F(Commands, UserSetsKeepSettingsForTheLifeOfTheCamera)
{
    control_.Write(Value(Block::Gain), 900);
    control_.Write(ImageSizeWord::Width, 160);
    control_.Write(Reg::PixelFormat, 0x02180014);
    SaveUserSet(3);
    LoadUserSet(0);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 0u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 320u * 240);
    EXPECT_EQ(control_.TryWrite(Reg::UserSetSave, 1), AccessDenied) << "the factory's set";
    EXPECT_EQ(control_.TryWrite(Reg::UserSetLoad, 2), InvalidParameter);
    control_.Write(Reg::UserSetDefault, 3);
    camera_->Unplug();
    camera_->Plug();
    EXPECT_EQ(control_.Read(Reg::UserSetDefault), 3u);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 900u);
    EXPECT_EQ(control_.Read(Value(Block::PixelSize)), 24u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 160u * 240 * 3);
}

TEST_F(Commands, UserSetIsNotLoadedWhileStreaming)
{
    Begin();
    EXPECT_EQ(control_.TryWrite(Reg::UserSetLoad, 1), AccessDenied);
}

TEST_F(Commands, UserSetsTakeAWhile)
{
    EXPECT_EQ(control_.Read(Reg::UserSetDone), 1u);
    for (const std::uint64_t command : {Reg::UserSetSave, Reg::UserSetLoad}) {
        control_.Write(Reg::UserSetSelector, 1);
        control_.Write(Reg::CommandDelay, 3600000);
        control_.Write(command, 1);
        EXPECT_EQ(control_.Read(Reg::UserSetDone), 0u);
        EXPECT_EQ(control_.Read(command), 1u);
        control_.Write(Reg::CommandDelay, 0);
        EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::UserSetDone) == 1; }));
        EXPECT_EQ(control_.Read(command), 0u);
        control_.Write(Reg::TimestampLatch, 1);
        const std::uint64_t before = control_.ReadLong(Reg::Timestamp);
        control_.Write(command, 1);
        EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::UserSetDone) == 1; }));
        control_.Write(Reg::TimestampLatch, 1);
        EXPECT_GE(control_.ReadLong(Reg::Timestamp), before + 50000000);
    }
}

TEST_F(Commands, UserSetCommandIsRefusedWhileAnotherIsUnderWay)
{
    SaveUserSet(1);
    control_.Write(Value(Block::Gain), 900);
    for (const std::uint64_t first : {Reg::UserSetSave, Reg::UserSetLoad}) {
        control_.Write(Reg::UserSetSelector, 2);
        control_.Write(Reg::CommandDelay, Reg::s_never);
        control_.Write(first, 1);
        control_.Write(Reg::UserSetSelector, 1);
        for (const std::uint64_t second : {Reg::UserSetSave, Reg::UserSetLoad}) {
            EXPECT_EQ(control_.TryWrite(second, 1), Busy) << std::hex << first << ", then " << second;
        }
        EXPECT_EQ(control_.Read(Value(Block::Gain)), 900u) << "nothing was loaded";
        control_.Write(Value(Block::Gamma), 90); // other features are not concerned
        control_.Write(Reg::CommandDelay, 0);
        AwaitUserSet();
    }
    LoadUserSet(1);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 0u) << "nor saved";
}

TEST_F(Commands, UserSetIsNotSavedAndLoadedInOneWrite)
{
    SaveUserSet(1);
    control_.Write(Value(Block::Gain), 900);
    ASSERT_EQ(Reg::UserSetLoad + 4, Reg::UserSetSave);
    const std::uint32_t both[] = {1, 1};
    EXPECT_EQ(control_.WriteMemory(Reg::UserSetLoad, std::as_bytes(std::span(both))), Busy);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 900u) << "all or nothing";
    EXPECT_EQ(control_.Read(Reg::UserSetDone), 1u);
    SaveUserSet(2); // nothing is under way
}

TEST_F(Commands, UserSetCommandThatIsDoneIsInNobodysWay)
{
    control_.Write(Reg::UserSetSelector, 1);
    control_.Write(Reg::UserSetSave, 1);
    // Without a read that would notice the end.
    EXPECT_TRUE(Eventually([&] { return control_.TryWrite(Reg::UserSetLoad, 1) == Success; }));
}

TEST_F(Commands, EveryCommandReportsDoneLateOrNeverOnDemand)
{
    const std::pair<std::uint64_t, std::uint32_t> commands[] = {
        {Reg::AcquisitionStart, 1},
        {Reg::AcquisitionAbort, 1},
        {Value(Block::AcquisitionCommand), AcquisitionCommand::Stop},
        {Value(Block::SoftwareTrigger), SoftwareTriggerValue::Impulse},
        {Reg::EiTestControl, 1},
        {Reg::UserSetSave, 1},
        {Reg::UserSetLoad, 1},
    };
    control_.Write(Reg::UserSetSelector, 2);
    for (const auto &[command, value] : commands) {
        control_.Write(Reg::AcquisitionAbort, 1);
        control_.Write(Reg::CommandDelay, Reg::s_never);
        control_.Write(command, value);
        EXPECT_EQ(control_.Read(command), value) << std::hex << command;
        control_.Write(Reg::CommandDelay, 1);
        EXPECT_TRUE(Eventually([&] { return control_.Read(command) == 0; })) << std::hex << command;
        control_.Write(Reg::CommandDelay, 0);
    }
}

TEST_F(Commands, LateCommandIsCarriedOutAtOnce)
{
    control_.Write(Reg::CommandDelay, Reg::s_never);
    control_.Write(Reg::AcquisitionStart, 1);
    EXPECT_EQ(control_.Read(Reg::AcquisitionActive), 1u);
    camera_->Unplug();
    camera_->Plug();
    EXPECT_EQ(control_.Read(Reg::AcquisitionStart), 0u);
}

TEST_F(Commands, UserSetKeepsEverySelectedValue)
{
    // Selector, its value, what it selects, a value other than the factory's.
    const struct {
        std::uint64_t selector;
        std::uint32_t entry;
        std::uint64_t address;
        std::uint32_t value;
    } rows[] = {
        {Value(Block::LineSelector), 2, Value(Block::LineSource), LineSourceValue::ExposureActive},
        {Value(Block::TimerSelector), 1, Value(Block::TimerDelay), 77},
        {Value(Block::TimerSelector), 0, Value(Block::TimerTriggerSource), TimerSource::ExposureEnd},
        {Reg::LutIndex, 1000, Reg::LutValue, 3},
        {Reg::MatrixRow, 2, Reg::MatrixElement, 0u - 500},
        {Reg::DpcIndex, 31, Reg::DpcEntryY, 12},
        {Reg::ShutterIndex, 16, Reg::ShutterEntry, 20},
        {Value(Block::ImageFormatSelector), 2, ImageSizeWord::Height, 60},
        {Reg::BalanceRatioSelector, 1, Reg::BalanceRatio, 900},
    };
    for (const auto &row : rows) {
        control_.Write(row.selector, row.entry);
        ASSERT_NE(control_.Read(row.address), row.value);
        control_.Write(row.address, row.value);
    }
    control_.Write(Reg::ShutterTerminateAt, 3);
    SaveUserSet(15);
    LoadUserSet(0);
    for (const auto &row : rows) {
        control_.Write(row.selector, row.entry);
        EXPECT_NE(control_.Read(row.address), row.value) << std::hex << row.address;
    }
    LoadUserSet(15);
    EXPECT_EQ(control_.Read(Reg::ShutterTerminateAt), 3u);
    for (const auto &row : rows) {
        control_.Write(row.selector, row.entry);
        EXPECT_EQ(control_.Read(row.address), row.value) << std::hex << row.address;
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
