#pragma once
// From light to signal: exposure, gain, white balance, colours, gamma and look-up table, as the settings say.

#include "vcam/PictureSettings.h"

namespace Orvi::Vcam {

class Development {
  public:
    explicit Development(const PictureSettings &settings);

    Signal operator()(Signal light) const;
    /// The first part alone: what the sensor delivers. Each colour of the signal depends on that colour of the light.
    Signal Expose(Signal light) const;
    /// The second part: colours that mix.
    Signal Finish(Signal signal) const;
    /// Whether Finish() mixes colours at all.
    bool MixesColours() const { return mixesColours_; }

  private:
    std::int32_t Bend(std::int32_t value) const
    {
        return curve_.empty() ? value : curve_[static_cast<std::size_t>(value)];
    }

    bool isMono_;
    std::int32_t blackLevel_;
    std::int64_t redFactor_, greenFactor_, blueFactor_; // light to signal, 16 bits after the point
    std::int64_t colours_[3][3];                        // 12 bits after the point
    bool mixesColours_;
    std::vector<std::uint16_t> curve_; // gamma and look-up table; empty when they change nothing
};

} // namespace Orvi::Vcam
