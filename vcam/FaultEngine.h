#pragma once
// Decides when the rules of a fault script act; what they do is the device's. One thread at a time asks it.

#include "vcam/Faults.h"

#include <chrono>
#include <span>

namespace Orvi::Vcam {

class FaultEngine {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit FaultEngine(const FaultScript &script);

    /// Power-up: numbers begin anew, and rules that were armed are gone. How often a rule has acted is kept.
    void Restart(TimePoint now);
    /// Adds a rule until the next power-up. Its commands, writes and time count from now on.
    void Arm(const FaultRule &rule, TimePoint now);
    /// Removes the rules that were armed.
    void Disarm();

    // The rules that act at this moment, in their order.
    std::vector<FaultRule> AtFrame(std::uint64_t block);
    /// The range of the command's one read or write; empty when it has none.
    std::vector<FaultRule> AtCommand(std::uint64_t address, std::size_t size);
    std::vector<FaultRule> AtWrite(std::uint64_t address, std::uint32_t value);
    std::vector<FaultRule> AtTime(TimePoint now);

    /// When AtTime() has something to do next.
    std::optional<TimePoint> NextTime() const;
    /// Rules that have acted since power-up.
    std::uint32_t Acted() const { return acted_; }

  private:
    struct State {
        FaultRule rule;
        std::uint64_t place; ///< in the script, or behind it in the order of arming
        TimePoint begun{};
        std::uint64_t counted = 0; ///< commands or writes that have come, or ms that are over
        std::uint32_t acted = 0;
    };

    bool IsSpent(const State &state) const { return state.rule.times != 0 && state.acted == state.rule.times; }
    bool Acts(State &state, std::uint64_t number);
    std::optional<std::uint64_t> NextNumber(const State &state) const;
    template <class Counts>
    std::vector<FaultRule> Gather(FaultMoment moment, Counts counts);

    const std::uint64_t seed_;
    const std::size_t scripted_;
    std::vector<State> states_;
    std::uint64_t placed_;
    std::uint32_t acted_ = 0;
};

} // namespace Orvi::Vcam
