#pragma once
// The registers through which a program gives a virtual camera the rules of faults, in this process or behind a bus.

#include "vcam/Faults.h"

#include <array>
#include <cstdint>

namespace Orvi::Testing {

constexpr uint64_t faultRule = 0x0F000040, faultArm = 0x0F000070, faultsActed = 0x0F000074;

/// What to write at faultRule; the last word, at faultArm, arms the rule.
inline std::array<uint32_t, 13> FaultWords(const Vcam::FaultRule &rule)
{
    constexpr uint32_t unset = 0xFFFFFFFF;
    const auto word = [](auto value) { return static_cast<uint32_t>(value); };
    return {word(rule.moment),
            rule.at ? word(*rule.at) : unset,
            word(rule.every),
            word(rule.from),
            word(rule.probability * 1e6),
            rule.times,
            rule.address ? word(*rule.address) : unset,
            rule.value,
            rule.mask,
            word(rule.action),
            word(rule.amount),
            word(rule.target),
            1};
}

} // namespace Orvi::Testing
