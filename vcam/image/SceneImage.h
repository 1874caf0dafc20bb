#pragma once
// An image that lies in front of a sensor: the light of each of its pixels in 16 bits.

#include "vcam/Signal.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvi::Vcam {

struct SceneImage {
    std::uint32_t width = 0, height = 0;
    std::uint32_t channels = 1;         ///< 1 grey, 3 red, green and blue
    std::vector<std::uint16_t> samples; ///< 0 to 65535, line by line

    Signal At(std::uint32_t x, std::uint32_t y) const
    {
        const std::uint16_t *at = samples.data() + (std::size_t{y} * width + x) * channels;
        return channels == 1 ? Grey(*at) : Signal{at[0], at[1], at[2]};
    }
};

using SceneImagePtr = std::shared_ptr<const SceneImage>;

/// A sample of 0 to `maximum` as light. Ranges of whole bits keep all of them: what a camera with as many bits or fewer
/// makes of it is the sample itself, or its upper bits.
constexpr std::uint16_t ToLight(std::uint32_t sample, std::uint32_t maximum)
{
    switch (maximum) {
    case 0xFF:
        return static_cast<std::uint16_t>(sample * 0x101);
    case 0xFFFF:
        return static_cast<std::uint16_t>(sample);
    default:
        return static_cast<std::uint16_t>((sample * 0xFFFF + maximum / 2) / maximum);
    }
}

} // namespace Orvi::Vcam
