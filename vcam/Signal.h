#pragma once
// The value that a pixel has before it is encoded.

#include <cstdint>

namespace Orvi::Vcam {

/// Light or signal of the three colours, 0 to s_white: as many bits as the deepest pixel format has.
struct Signal {
    std::int32_t red, green, blue;
};
constexpr std::int32_t s_white = 0xFFFF;

constexpr Signal Grey(std::int32_t value) { return {value, value, value}; }

} // namespace Orvi::Vcam
