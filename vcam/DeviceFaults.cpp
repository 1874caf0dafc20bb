#include "vcam/Device.h"
#include "vcam/FramePlan.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

using std::chrono::milliseconds;

/// The rule that the quadlets from Reg::FaultMoment on describe.
FaultRule StagedRule(const RegisterSpace &registers)
{
    const auto word = [&](std::uint64_t address) { return registers.Word(address); };
    FaultRule rule;
    rule.moment = static_cast<FaultMoment>(word(Reg::FaultMoment));
    if (word(Reg::FaultAt) != Reg::s_unset) {
        rule.at = word(Reg::FaultAt);
    }
    rule.every = word(Reg::FaultEvery);
    rule.from = word(Reg::FaultFrom);
    rule.probability = word(Reg::FaultProbability) / 1e6;
    rule.times = word(Reg::FaultTimes);
    if (word(Reg::FaultAddress) != Reg::s_unset) {
        rule.address = word(Reg::FaultAddress);
    }
    rule.value = word(Reg::FaultValue);
    rule.mask = word(Reg::FaultMask);
    rule.action = static_cast<FaultAction>(word(Reg::FaultAction));
    // Ids can be shifted back too.
    const auto amount = word(Reg::FaultAmount);
    const bool isSigned = rule.action == FaultAction::ShiftBlockId || rule.action == FaultAction::ShiftTrailerId ||
                          rule.action == FaultAction::ShiftRequestId;
    rule.amount = isSigned ? std::int64_t{static_cast<std::int32_t>(amount)} : std::int64_t{amount};
    rule.target = word(Reg::FaultTarget);
    return rule;
}

} // namespace

bool Device::MayArm() const { return !ProblemOf(StagedRule(registers_)); }

void Device::WrittenFaultArm(std::uint32_t value)
{
    if (value == 0) {
        faults_.Disarm();
        nextFrame_.clear();
        nextCommand_.clear();
        badEvents_ = 0;
        return;
    }
    faults_.Arm(StagedRule(registers_), Clock::now());
    AwaitFaultTime();
}

/// Has the alarm call when the next rule about a time is due.
void Device::AwaitFaultTime()
{
    if (const auto due = faults_.NextTime(); due && (!faultAlarm_ || *due < *faultAlarm_)) {
        faultAlarm_ = due;
        alarm_.Set(*due, [this, powerUps = powerUps_] {
            {
                const Lock lock(mutex_);
                if (!isPlugged_ || powerUps != powerUps_) {
                    return;
                }
                faultAlarm_.reset();
                ActOn(faults_.AtTime(Clock::now()));
                AwaitFaultTime();
            }
            Settle();
        });
    }
}

/// What concerns the camera happens, as far as it may under the lock: Settle() does the rest. The others wait for the
/// next frame or command.
void Device::ActOn(const std::vector<FaultRule> &rules)
{
    for (const FaultRule &rule : rules) {
        const auto amount = static_cast<std::uint32_t>(rule.amount);
        if (IsAboutFrame(rule.action) || IsAboutAck(rule.action)) {
            (IsAboutFrame(rule.action) ? nextFrame_ : nextCommand_).push_back(rule);
            continue;
        }
        switch (rule.action) {
        case FaultAction::StallEvents:
            isEventHaltDue_ = true;
            break;
        case FaultAction::EventBurst:
            for (std::uint32_t i = 0; i < amount; ++i) {
                Raise(EventKind::Test, 0);
            }
            break;
        case FaultAction::BadEvents:
            badEvents_ += amount;
            break;
        case FaultAction::Poke:
            Poke(rule.target, amount);
            break;
        case FaultAction::Trigger:
            Trigger();
            break;
        case FaultAction::Unplug:
            registers_.SetWord(Reg::ReplugDelay, amount);
            isUnplugRequested_ = true;
            break;
        default:
            break;
        }
    }
    if (!rules.empty()) {
        isSettleDue_ = true;
    }
}

/// A register that hosts may write takes what they could write now; of others only the memory changes.
void Device::Poke(std::uint64_t address, std::uint32_t value)
{
    RefreshCommands();
    if (registers_.CheckWrite(address, sizeof value) != GenCpStatus::Success) {
        registers_.SetWord(address, value);
    } else if (CheckQuadlet(address, value) == GenCpStatus::Success) {
        registers_.SetWord(address, value);
        Written(address, value);
    }
}

/// The faults of a frame that begins.
std::vector<FaultRule> Device::TakeFrameFaults(std::uint64_t block)
{
    ActOn(faults_.AtFrame(block));
    return std::exchange(nextFrame_, {});
}

/// The faults of a command that has arrived. Commands that are about faults are no targets of them.
std::vector<FaultRule> Device::TakeCommandFaults(std::span<const std::byte> command)
{
    std::uint64_t address = 0;
    std::size_t size = 0;
    if (command.size() >= s_genCpHeader + 12) {
        const auto id = static_cast<GenCpCommand>(LoadLe<std::uint16_t>(command.data() + 6));
        address = LoadLe<std::uint64_t>(command.data() + s_genCpHeader);
        size = id == GenCpCommand::ReadMem    ? LoadLe<std::uint16_t>(command.data() + s_genCpHeader + 10)
               : id == GenCpCommand::WriteMem ? command.size() - s_genCpHeader - 8
                                              : 0;
    }
    if (size != 0 && address >= Reg::FaultMoment && address <= Reg::FaultsActed) {
        return {};
    }
    ActOn(faults_.AtCommand(address, size));
    return std::exchange(nextCommand_, {});
}

/// Does what must not happen under the lock. Called without it.
void Device::Settle()
{
    bool isEventHaltDue = false;
    {
        const Lock lock(mutex_);
        isEventHaltDue = std::exchange(isEventHaltDue_, false);
    }
    if (isEventHaltDue) {
        event_.SetHalt();
    }
    FinishWrite();
    eventOutbox_.Pump();
}

} // namespace Orvi::Vcam
