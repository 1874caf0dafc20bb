#pragma once
// Pixels of the sensor that are defective for good: every camera of a size has them in the same places.

#include <array>
#include <cstdint>

namespace Orvi::Vcam {

/// A place on the sensor.
struct SensorPixel {
    std::uint32_t x, y;
    bool operator==(const SensorPixel &) const = default;
};

struct Defect : SensorPixel {
    bool isWhite; ///< else black
};

constexpr std::uint32_t s_defectCount = 5;

constexpr std::array<Defect, s_defectCount> DefectsOf(std::uint32_t width, std::uint32_t height)
{
    return {Defect{{width / 7, height / 5}, true}, Defect{{width * 2 / 7, height * 3 / 5}, false},
            Defect{{width * 3 / 7, height * 2 / 5}, true}, Defect{{width * 5 / 7, height * 4 / 5}, false},
            Defect{{width * 6 / 7, height / 3}, true}};
}

} // namespace Orvi::Vcam
