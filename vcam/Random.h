#pragma once
// Numbers that look random and are a function of what they are drawn from: the same everywhere and each time.

#include <cstdint>

namespace Orvi::Vcam {

/// SplitMix64 of a seed and a number.
constexpr std::uint64_t RandomNumber(std::uint64_t seed, std::uint64_t number)
{
    std::uint64_t bits = seed * 0xD1342543DE82EF95 + (number + 1) * 0x9E3779B97F4A7C15;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
    return bits ^ bits >> 31;
}

} // namespace Orvi::Vcam
