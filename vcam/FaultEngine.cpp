#include "vcam/FaultEngine.h"

#include <algorithm>
#include <utility>

namespace Orvi::Vcam {

namespace {

using std::chrono::milliseconds;

/// The splitmix64 generator's output for a state.
std::uint64_t Mix(std::uint64_t state)
{
    state += 0x9E3779B97F4A7C15;
    state = (state ^ state >> 30) * 0xBF58476D1CE4E5B9;
    state = (state ^ state >> 27) * 0x94D049BB133111EB;
    return state ^ state >> 31;
}

/// From 0 to below 1, a function of the three alone.
double Draw(std::uint64_t seed, std::uint64_t place, std::uint64_t number)
{
    return static_cast<double>(Mix(Mix(Mix(seed) + place) + number) >> 11) * 0x1p-53;
}

} // namespace

FaultEngine::FaultEngine(const FaultScript &script)
    : seed_(script.seed), scripted_(script.rules.size()), placed_(script.rules.size())
{
    for (const FaultRule &rule : script.rules) {
        states_.push_back({rule, states_.size()});
    }
}

void FaultEngine::Restart(TimePoint now)
{
    Disarm();
    acted_ = 0;
    for (State &state : states_) {
        state.begun = now;
        state.counted = 0;
    }
}

void FaultEngine::Arm(const FaultRule &rule, TimePoint now) { states_.push_back({rule, placed_++, now}); }

void FaultEngine::Disarm()
{
    states_.erase(states_.begin() + static_cast<std::ptrdiff_t>(scripted_), states_.end());
    placed_ = scripted_;
}

bool FaultEngine::Acts(State &state, std::uint64_t number)
{
    const FaultRule &rule = state.rule;
    const bool isNumber = rule.at ? number == *rule.at
                                  : number >= rule.from && number % rule.every == 0 && (number != 0 || rule.every == 1);
    if (!isNumber || IsSpent(state) || (rule.probability < 1 && Draw(seed_, state.place, number) >= rule.probability)) {
        return false;
    }
    ++state.acted;
    ++acted_;
    return true;
}

template <class Counts>
std::vector<FaultRule> FaultEngine::Gather(FaultMoment moment, Counts counts)
{
    std::vector<FaultRule> rules;
    for (State &state : states_) {
        if (state.rule.moment == moment && counts(state.rule) && Acts(state, ++state.counted)) {
            rules.push_back(state.rule);
        }
    }
    return rules;
}

std::vector<FaultRule> FaultEngine::AtFrame(std::uint64_t block)
{
    std::vector<FaultRule> rules;
    for (State &state : states_) {
        if (state.rule.moment == FaultMoment::Frame && Acts(state, block)) {
            rules.push_back(state.rule);
        }
    }
    return rules;
}

std::vector<FaultRule> FaultEngine::AtCommand(std::uint64_t address, std::size_t size)
{
    return Gather(FaultMoment::Command, [&](const FaultRule &rule) {
        return !rule.address || (size != 0 && *rule.address + 4 > address && *rule.address < address + size);
    });
}

std::vector<FaultRule> FaultEngine::AtWrite(std::uint64_t address, std::uint32_t value)
{
    return Gather(FaultMoment::Write, [&](const FaultRule &rule) {
        return rule.address == address && ((value ^ rule.value) & rule.mask) == 0;
    });
}

/// The next time of a rule, in ms since its begin.
std::optional<std::uint64_t> FaultEngine::NextNumber(const State &state) const
{
    const FaultRule &rule = state.rule;
    if (rule.moment != FaultMoment::Time || IsSpent(state)) {
        return std::nullopt;
    }
    if (rule.at) {
        return state.counted > *rule.at ? std::nullopt : rule.at;
    }
    const std::uint64_t least = std::max({state.counted, rule.from, std::uint64_t{1}});
    return (least + rule.every - 1) / rule.every * rule.every;
}

std::vector<FaultRule> FaultEngine::AtTime(TimePoint now)
{
    std::vector<FaultRule> rules;
    for (State &state : states_) {
        for (;;) {
            const std::optional<std::uint64_t> number = NextNumber(state);
            if (!number || state.begun + milliseconds(*number) > now) {
                break;
            }
            if (Acts(state, *number)) {
                rules.push_back(state.rule);
            }
            state.counted = *number + 1;
        }
    }
    return rules;
}

std::optional<FaultEngine::TimePoint> FaultEngine::NextTime() const
{
    std::optional<TimePoint> next;
    for (const State &state : states_) {
        if (const auto number = NextNumber(state)) {
            const TimePoint due = state.begun + milliseconds(*number);
            next = next ? std::min(*next, due) : due;
        }
    }
    return next;
}

} // namespace Orvi::Vcam
