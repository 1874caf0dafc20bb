#include "vcam/Development.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Orvi::Vcam {

namespace {

using std::int32_t, std::int64_t;

/// At this exposure and 0 dB a signal equals the light.
constexpr double s_neutralExposure = 10000;

constexpr std::array<int32_t, 9> s_identity{1000, 0, 0, 0, 1000, 0, 0, 0, 1000};

/// Hue turns about the grey axis, saturation stretches away from it.
double HueAndSaturation(const PictureSettings &settings, int row, int column)
{
    const double angle = settings.hue / 1800.0 * std::numbers::pi;
    const double saturation = settings.saturation / 100.0;
    const double grey = (1 - std::cos(angle)) / 3, skew = std::sin(angle) / std::sqrt(3.0);
    const double turned = row == column                 ? std::cos(angle) + grey
                          : (column - row + 3) % 3 == 1 ? grey - skew
                                                        : grey + skew;
    return saturation * turned + (1 - saturation) / 3;
}

/// Ten bits of the signal choose the entry; its ten bits are spread over the range again.
int32_t LookUp(const std::vector<std::uint16_t> &lut, int32_t value)
{
    const int32_t entry = lut[static_cast<std::size_t>(value) >> 6];
    return entry << 6 | entry >> 4;
}

} // namespace

Development::Development(const PictureSettings &settings)
    : isMono_(settings.Format().colours == Colours::Mono), blackLevel_(16 * static_cast<int32_t>(settings.blackLevel))
{
    const double gain = std::pow(10.0, settings.gain / 2000.0);
    // A bin sums up the light of its pixels.
    const double factor = settings.exposure / s_neutralExposure * gain * settings.binningX * settings.binningY * 65536;
    redFactor_ = std::llround(factor * (isMono_ ? 1 : settings.redRatio / 1000.0));
    greenFactor_ = std::llround(factor);
    blueFactor_ = std::llround(factor * (isMono_ ? 1 : settings.blueRatio / 1000.0));

    mixesColours_ = settings.Format().HasAllColours() &&
                    (settings.hue != 0 || settings.saturation != 100 || settings.matrix != s_identity);
    for (int row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            double sum = 0;
            for (int i = 0; i < 3; ++i) {
                sum += HueAndSaturation(settings, row, i) * settings.matrix[3 * static_cast<std::size_t>(i) + column];
            }
            colours_[row][column] = std::llround(sum * 4.096);
        }
    }
    if (settings.gamma == 100 && settings.lut.empty()) {
        return;
    }
    constexpr int32_t steps = (s_white >> s_curveShift) + 1;
    curve_.reserve(steps);
    for (int32_t i = 0; i < steps; ++i) {
        const double bent = s_white * std::pow(i / double{steps - 1}, settings.gamma / 100.0);
        const auto value = static_cast<int32_t>(std::llround(bent));
        curve_.push_back(static_cast<std::uint16_t>(settings.lut.empty() ? value : LookUp(settings.lut, value)));
    }
}

std::span<const Signal> Development::Line(std::span<const Signal> light, std::span<Signal> room) const
{
    constexpr std::int64_t unchanged = 65536;
    const bool isNeutral = redFactor_ == unchanged && greenFactor_ == unchanged && blueFactor_ == unchanged &&
                           blackLevel_ == 0 && !mixesColours_ && curve_.empty();
    if (isNeutral) {
        return light;
    }
    std::ranges::transform(light, room.begin(), [this](Signal one) { return Colour(one); });
    return room;
}

} // namespace Orvi::Vcam
