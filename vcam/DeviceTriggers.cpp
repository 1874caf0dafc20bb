#include "vcam/Device.h"

namespace Orvi::Vcam {

namespace {

using std::chrono::microseconds;

// More triggers than these do not wait for their images.
constexpr std::size_t s_triggerDepth = 16;

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

} // namespace

bool Device::IsHigh(std::uint32_t lineSource, std::size_t line) const
{
    const auto isRunning = [this](std::size_t timer) {
        const Clock::time_point now = Clock::now();
        return now >= timers_[timer].from && now < timers_[timer].until;
    };
    switch (lineSource) {
    case LineSourceValue::VerticalDrive:
        return acquisition_.isActive && !isInFrame_;
    case LineSourceValue::UserOutput:
        return (registers_.Word(Block::UserOutput + 0x10) >> line & 1) != 0;
    case LineSourceValue::Timer0Active:
        return isRunning(0);
    case LineSourceValue::Timer1Active:
        return isRunning(1);
    case LineSourceValue::AcquisitionActive:
        return acquisition_.isActive;
    case LineSourceValue::FrameTriggerWait:
        return acquisition_.isActive && IsTriggered() && !isInFrame_;
    case LineSourceValue::FrameActive:
        return isInFrame_;
    case LineSourceValue::FrameTransferActive:
        return isTransferring_;
    case LineSourceValue::ExposureActive:
        return isExposing_;
    default:
        return false;
    }
}

/// The levels of all lines, behind the inverter.
std::uint32_t Device::LineStates() const
{
    std::uint32_t levels = lineLevels_ & 1; // line 0 is the input
    for (std::size_t line = 1; line < 3; ++line) {
        levels |= IsHigh(registers_.Word(Reg::LineSourceTable + 4 * line), line) ? 1u << line : 0;
    }
    return levels ^ registers_.Word(Block::LineInverter + 0x10);
}

/// The pins or the inverter have changed.
void Device::WrittenLines()
{
    lineLevels_ = registers_.Word(Reg::LineLevels);
    const std::uint32_t level = LineStates() & 1;
    if (level == std::exchange(inputLevel_, level)) {
        return;
    }
    if (level != 0) {
        Raise(EventKind::Line0RisingEdge, 0);
        StartTimers(TimerSource::Line0);
    }
    if (registers_.Word(Value(Block::TriggerSource)) == 0) {
        if (level == registers_.Word(Reg::TriggerActivation)) {
            Trigger();
        } else {
            ReleaseTrigger();
        }
    }
}

/// An input has no source to choose.
void Device::WrittenLineSelector()
{
    constexpr std::uint32_t writable = 1u << 25;
    const std::uint32_t inquiry = registers_.Word(Block::LineSource);
    const bool isInput = registers_.Word(Value(Block::LineSelector)) == 0;
    registers_.SetWord(Block::LineSource, isInput ? inquiry & ~writable : inquiry | writable);
}

void Device::WrittenSoftwareTrigger(std::uint32_t value)
{
    const bool wasActive = std::exchange(isSoftwareActive_, value == SoftwareTriggerValue::Active);
    const bool isSource = registers_.Word(Value(Block::TriggerSource)) == s_softwareSource;
    if (value == SoftwareTriggerValue::Impulse) {
        FinishCommand(Value(Block::SoftwareTrigger));
    }
    if (!isSource) {
        return;
    }
    if (value == SoftwareTriggerValue::Impulse || (isSoftwareActive_ && !wasActive)) {
        Trigger();
    }
    if (!isSoftwareActive_) {
        ReleaseTrigger();
    }
}

void Device::Trigger()
{
    if (acquisition_.isActive && IsTriggered() && triggers_.size() < s_triggerDepth) {
        triggers_.push_back({Clock::now() + microseconds(registers_.Word(Value(Block::TriggerDelay))), std::nullopt});
        StartTimers(TimerSource::FrameTrigger);
    }
}

/// The level of the last trigger is gone: an exposure as long as the trigger ends, delayed as it began.
void Device::ReleaseTrigger()
{
    TriggerPulse &pulse = triggers_.empty() ? pulse_ : triggers_.back();
    if (!pulse.end) {
        pulse.end = Clock::now() + microseconds(registers_.Word(Value(Block::TriggerDelay)));
    }
}

void Device::DropTriggers()
{
    triggers_.clear();
    burstLeft_ = 0;
    ReleaseTrigger();
}

void Device::StartTimers(std::uint32_t source)
{
    for (std::size_t timer = 0; timer < timers_.size(); ++timer) {
        const std::uint64_t entry = Reg::TimerTable + 16 * timer;
        if (registers_.Word(entry + 8) == source) {
            timers_[timer].from = Clock::now() + microseconds(registers_.Word(entry));
            timers_[timer].until = timers_[timer].from + microseconds(registers_.Word(entry + 4));
        }
    }
}

bool Device::IsTriggerDue(Lock &lock)
{
    if (triggers_.empty()) {
        wake_.wait(lock);
        return false;
    }
    if (Clock::now() < triggers_.front().start) {
        wake_.wait_until(lock, triggers_.front().start);
        return false;
    }
    pulse_ = triggers_.front();
    triggers_.pop_front();
    const bool isBurst = registers_.Word(Value(Block::TriggerSequence)) == s_burstSequence;
    burstLeft_ = isBurst ? registers_.Word(Value(Block::TriggerParameter)) : 1;
    return true;
}

} // namespace Orvi::Vcam
