#pragma once
// From light to signal: exposure, gain, white balance, colours, gamma and look-up table, as the settings say.

#include "vcam/PictureSettings.h"

#include <algorithm>
#include <span>

namespace Orvi::Vcam {

class Development {
  public:
    explicit Development(const PictureSettings &settings);

    Signal operator()(Signal light) const { return isMono_ ? Grey(Brightness(light)) : Colour(light); }
    /// Of a camera without colours: all three are this.
    std::int32_t Brightness(Signal light) const
    {
        return Bend(Expose((light.red + 2 * light.green + light.blue) / 4, greenFactor_));
    }
    /// Of a camera with colours.
    Signal Colour(Signal light) const
    {
        Signal signal{Expose(light.red, redFactor_), Expose(light.green, greenFactor_),
                      Expose(light.blue, blueFactor_)};
        if (mixesColours_) {
            signal = {Mix(colours_[0], signal), Mix(colours_[1], signal), Mix(colours_[2], signal)};
        }
        return {Bend(signal.red), Bend(signal.green), Bend(signal.blue)};
    }

    /// The same for pixels side by side. The result lies in `room`, unless nothing is changed: then it is the light.
    std::span<const Signal> Line(std::span<const Signal> light, std::span<Signal> room) const;

  private:
    /// Gamma is a table of twelve bits.
    static constexpr int s_curveShift = 4;

    std::int32_t Expose(std::int32_t light, std::int64_t factor) const
    {
        return static_cast<std::int32_t>(std::min<std::int64_t>((light * factor >> 16) + blackLevel_, s_white));
    }
    static std::int32_t Mix(const std::int64_t (&row)[3], Signal signal)
    {
        const std::int64_t sum = row[0] * signal.red + row[1] * signal.green + row[2] * signal.blue;
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum / 4096, 0, s_white));
    }
    std::int32_t Bend(std::int32_t value) const
    {
        return curve_.empty() ? value : curve_[static_cast<std::size_t>(value) >> s_curveShift];
    }

    bool isMono_;
    std::int32_t blackLevel_;
    std::int64_t redFactor_, greenFactor_, blueFactor_; // light to signal, 16 bits after the point
    std::int64_t colours_[3][3];                        // 12 bits after the point
    bool mixesColours_;
    std::vector<std::uint16_t> curve_; // gamma and look-up table; empty when they change nothing
};

} // namespace Orvi::Vcam
