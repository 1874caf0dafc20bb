#pragma once
// An image that lies in front of a sensor: the light of each of its pixels in 12 bits.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvi::Vcam {

struct SceneImage {
    std::uint32_t width = 0, height = 0;
    std::uint32_t channels = 1;         ///< 1 grey, 3 red, green and blue
    std::vector<std::uint16_t> samples; ///< 0 to 4095, line by line

    const std::uint16_t *At(std::uint32_t x, std::uint32_t y) const
    {
        return samples.data() + (std::size_t{y} * width + x) * channels;
    }
};

using SceneImagePtr = std::shared_ptr<const SceneImage>;

/// A sample of 0 to `maximum` as light. Ranges of whole bits keep their upper bits exactly: what a camera with as many
/// bits or fewer makes of it is the sample itself.
constexpr std::uint16_t ToLight(std::uint32_t sample, std::uint32_t maximum)
{
    switch (maximum) {
    case 0xFF:
        return static_cast<std::uint16_t>(sample << 4 | sample >> 4);
    case 0x3FF:
        return static_cast<std::uint16_t>(sample << 2 | sample >> 8);
    case 0xFFFF:
        return static_cast<std::uint16_t>(sample >> 4);
    default:
        return static_cast<std::uint16_t>((std::uint64_t{sample} * 4095 + maximum / 2) / maximum);
    }
}

} // namespace Orvi::Vcam
