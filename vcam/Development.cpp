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
    const int32_t entry = lut[static_cast<std::size_t>(value) >> 2];
    return entry << 2 | entry >> 8;
}

} // namespace

Development::Development(const PictureSettings &settings)
    : isMono_(settings.Format().colours == Colours::Mono), blackLevel_(static_cast<int32_t>(settings.blackLevel))
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
    for (int32_t i = 0; i <= s_white; ++i) {
        const double bent = s_white * std::pow(i / double{s_white}, settings.gamma / 100.0);
        const auto value = static_cast<int32_t>(std::llround(bent));
        curve_.push_back(static_cast<std::uint16_t>(settings.lut.empty() ? value : LookUp(settings.lut, value)));
    }
}

Signal Development::operator()(Signal light) const { return Finish(Expose(light)); }

Signal Development::Expose(Signal light) const
{
    if (isMono_) {
        light = Grey((light.red + 2 * light.green + light.blue) / 4);
    }
    const auto expose = [this](int32_t value, int64_t factor) {
        return static_cast<int32_t>(std::min<int64_t>((value * factor >> 16) + blackLevel_, s_white));
    };
    return {expose(light.red, redFactor_), expose(light.green, greenFactor_), expose(light.blue, blueFactor_)};
}

Signal Development::Finish(Signal signal) const
{
    if (mixesColours_) {
        const auto mix = [&signal](const int64_t(&row)[3]) {
            const int64_t sum = row[0] * signal.red + row[1] * signal.green + row[2] * signal.blue;
            return static_cast<int32_t>(std::clamp<int64_t>(sum / 4096, 0, s_white));
        };
        signal = {mix(colours_[0]), mix(colours_[1]), mix(colours_[2])};
    }
    return {Bend(signal.red), Bend(signal.green), Bend(signal.blue)};
}

} // namespace Orvi::Vcam
