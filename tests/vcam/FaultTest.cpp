// Which moments the rules of a fault script choose, and which rules are refused.

#include "vcam/FaultEngine.h"
#include "vcam/FramePlan.h"

#include "tests/vcam/HostSide.h"

namespace Orvi::Vcam::Test {

namespace {

using std::chrono::milliseconds;
using Numbers = std::vector<std::uint64_t>;

const FaultEngine::TimePoint s_start{};

/// The frames below the limit at which a rule acts.
Numbers FramesOf(const FaultRule &rule, std::uint64_t limit = 20, std::uint64_t seed = 0)
{
    FaultEngine engine({seed, {rule}});
    Numbers numbers;
    for (std::uint64_t block = 0; block < limit; ++block) {
        if (!engine.AtFrame(block).empty()) {
            numbers.push_back(block);
        }
    }
    return numbers;
}

std::string_view WrongMember(const FaultRule &rule) { return ProblemOf(rule).member; }

} // namespace

TEST(Faults, NumbersAreChosenByAtOrEveryAndFrom)
{
    EXPECT_EQ(FramesOf({.at = 7}), Numbers{7});
    EXPECT_EQ(FramesOf({.at = 0}), Numbers{0});
    EXPECT_EQ(FramesOf({.every = 6}), (Numbers{6, 12, 18}));
    EXPECT_EQ(FramesOf({.every = 6, .from = 7}), (Numbers{12, 18}));
    EXPECT_EQ(FramesOf({.from = 17}), (Numbers{17, 18, 19}));
    EXPECT_EQ(FramesOf({}, 3), (Numbers{0, 1, 2}));
    EXPECT_EQ(FramesOf({.times = 2}), (Numbers{0, 1}));
    EXPECT_EQ(FramesOf({.probability = 0}), Numbers{});
}

TEST(Faults, ChanceIsTheSeeds)
{
    const FaultRule rule{.probability = 0.25};
    const Numbers first = FramesOf(rule, 4000, 42);
    EXPECT_EQ(first, FramesOf(rule, 4000, 42));
    EXPECT_NE(first, FramesOf(rule, 4000, 43));
    EXPECT_GT(first.size(), 800u);
    EXPECT_LT(first.size(), 1200u);
    FaultEngine two({42, {rule, rule}});
    bool differs = false;
    for (std::uint64_t block = 0; block < 100; ++block) {
        differs = differs || two.AtFrame(block).size() == 1;
    }
    EXPECT_TRUE(differs) << "each rule draws for itself";
}

TEST(Faults, CommandsAreCountedFromOneAndByTheirAddress)
{
    FaultEngine engine(
        {0, {{.moment = FaultMoment::Command, .at = 2}, {.moment = FaultMoment::Command, .address = 0x1000}}});
    EXPECT_EQ(engine.AtCommand(0x1004, 4).size(), 0u);
    EXPECT_EQ(engine.AtCommand(0xFFC, 4).size(), 1u) << "the second";
    EXPECT_EQ(engine.AtCommand(0xFFC, 5).size(), 1u) << "reaches it";
    EXPECT_EQ(engine.AtCommand(0x1003, 1).size(), 1u);
    EXPECT_EQ(engine.AtCommand(0, 0).size(), 0u);
    EXPECT_EQ(engine.Acted(), 3u);
}

TEST(Faults, WritesAreComparedUnderTheMask)
{
    FaultEngine engine({0, {{.moment = FaultMoment::Write, .address = 0x2070C0, .value = 8, .mask = 0xF}}});
    EXPECT_EQ(engine.AtWrite(0x2070C0, 8).size(), 1u);
    EXPECT_EQ(engine.AtWrite(0x2070C0, 0x18).size(), 1u);
    EXPECT_EQ(engine.AtWrite(0x2070C0, 9).size(), 0u);
    EXPECT_EQ(engine.AtWrite(0x2070C4, 8).size(), 0u);
}

TEST(Faults, TimesComeOneAfterTheOther)
{
    FaultEngine engine(
        {0, {{.moment = FaultMoment::Time, .at = 5}, {.moment = FaultMoment::Time, .every = 10, .times = 2}}});
    engine.Restart(s_start);
    EXPECT_EQ(engine.NextTime(), s_start + milliseconds(5));
    EXPECT_EQ(engine.AtTime(s_start + milliseconds(4)).size(), 0u);
    EXPECT_EQ(engine.AtTime(s_start + milliseconds(5)).size(), 1u);
    EXPECT_EQ(engine.NextTime(), s_start + milliseconds(10));
    EXPECT_EQ(engine.AtTime(s_start + milliseconds(30)).size(), 2u) << "two are overdue, the third is one too many";
    EXPECT_EQ(engine.NextTime(), std::nullopt);
}

TEST(Faults, PowerUpForgetsNumbersAndArmedRulesButNotHowOften)
{
    FaultEngine engine({0, {{.moment = FaultMoment::Command, .at = 1}, {.moment = FaultMoment::Command, .times = 1}}});
    engine.Arm({.moment = FaultMoment::Command}, s_start);
    EXPECT_EQ(engine.AtCommand(0, 4).size(), 3u);
    engine.Restart(s_start);
    EXPECT_EQ(engine.Acted(), 0u);
    EXPECT_EQ(engine.AtCommand(0, 4).size(), 1u);
}

TEST(Faults, RulesThatCannotBeAreToldByTheirMember)
{
    EXPECT_EQ(WrongMember({}), "");
    EXPECT_EQ(WrongMember({.every = 0}), "every");
    EXPECT_EQ(WrongMember({.probability = 1.5}), "probability");
    EXPECT_EQ(WrongMember({.moment = FaultMoment::Time}), "at");
    EXPECT_EQ(WrongMember({.moment = FaultMoment::Time, .at = UINT64_MAX}), "at");
    EXPECT_EQ(WrongMember({.moment = FaultMoment::Write}), "address");
    EXPECT_EQ(WrongMember({.moment = FaultMoment::Write, .address = 2}), "address");
    EXPECT_EQ(WrongMember({.address = 4}), "address") << "of a frame";
    EXPECT_EQ(WrongMember({.amount = 1}), "amount") << "lost frames have none";
    EXPECT_EQ(WrongMember({.action = FaultAction::DelayAck}), "amount");
    EXPECT_EQ(WrongMember({.action = FaultAction::ShiftBlockId}), "amount") << "0 shifts nothing";
    EXPECT_EQ(WrongMember({.action = FaultAction::ErrorAck, .amount = 0x8006}), "");
    EXPECT_EQ(WrongMember({.action = FaultAction::Trigger, .target = 4}), "target");
    EXPECT_EQ(WrongMember({.action = FaultAction::Poke, .target = 3}), "target");
}

TEST(Faults, EachNameIsFoundAgain)
{
    for (int action = 0; action < static_cast<int>(FaultAction::Count); ++action) {
        EXPECT_EQ(FindFaultAction(NameOf(static_cast<FaultAction>(action))), static_cast<FaultAction>(action));
    }
    for (const FaultMoment moment : {FaultMoment::Frame, FaultMoment::Command, FaultMoment::Write, FaultMoment::Time}) {
        EXPECT_EQ(FindFaultMoment(NameOf(moment)), moment);
    }
    EXPECT_EQ(FindFaultMoment("frames"), std::nullopt);
    EXPECT_EQ(FindFaultAction(""), std::nullopt);
    EXPECT_EQ(FaultMomentNames(), "frame, command, write, time");
}

TEST(Faults, ScriptOfAConfigurationActsFromPowerUpOn)
{
    CameraConfig config;
    config.serial = "FAULTY";
    config.sensorWidth = 64;
    config.sensorHeight = 64;
    config.faults.rules = {{.moment = FaultMoment::Command, .at = 2, .action = FaultAction::ErrorAck, .amount = 0x8007},
                           {.moment = FaultMoment::Time,
                            .at = 0,
                            .action = FaultAction::Poke,
                            .amount = 1234,
                            .target = Reg::MaxResponseTime}};
    const auto camera = VirtualCamera::Create(config);
    Control control(*camera);
    std::uint32_t value = 0;
    const auto read = [&] { return control.ReadMemory(0, std::as_writable_bytes(std::span(&value, 1))); };
    EXPECT_EQ(read(), GenCpStatus::Success);
    EXPECT_EQ(read(), GenCpStatus::Busy);
    EXPECT_EQ(read(), GenCpStatus::Success);
    EXPECT_TRUE(Eventually([&] { return camera->PeekRegister(Reg::MaxResponseTime) == 1234; }));
    camera->Unplug();
    camera->Plug();
    EXPECT_EQ(read(), GenCpStatus::Success);
    EXPECT_EQ(read(), GenCpStatus::Busy) << "again after power-up";
}

TEST(Faults, PokeNeverGivesARegisterWhatAHostCouldNotWrite)
{
    CameraConfig config;
    config.serial = "FAULTY";
    config.faults.rules = {
        {.moment = FaultMoment::Command, .action = FaultAction::Poke, .amount = 77, .target = Reg::EventSelector}};
    const auto camera = VirtualCamera::Create(config);
    Control control(*camera);
    EXPECT_EQ(control.Read(Reg::EventSelector), 0u) << "there are not so many events";
    EXPECT_EQ(control.Read(Reg::EventNotification), 0u);
}

} // namespace Orvi::Vcam::Test
