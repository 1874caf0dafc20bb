#pragma once
// What the sensor sees and what becomes of it: every pixel as a pure function of the settings and the block id. The
// camera draws with it, and tests compare delivered images with RenderReference().

#include "vcam/PixelFormats.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace Orvi::Vcam {

/// All that an image depends on besides its block id.
struct PictureSettings {
    std::uint32_t sensorWidth = 0, sensorHeight = 0;
    std::uint32_t width = 0, height = 0, offsetX = 0, offsetY = 0;
    std::uint32_t pixelFormat = 0x01080001; ///< PFNC, one of s_pixelFormats
    std::uint32_t exposure = 10000;         ///< µs
    std::uint32_t gain = 0;                 ///< 0.01 dB
    std::uint32_t blackLevel = 0;           ///< of 4095
    std::uint32_t testPattern = 0;
    std::uint32_t binningX = 1, binningY = 1, decimationX = 1, decimationY = 1;
    bool reverseX = false, reverseY = false;
    std::uint32_t gamma = 100;                       ///< exponent, in hundredths
    std::uint32_t sharpness = 0;                     ///< of 8
    std::int32_t hue = 0;                            ///< 0.1 degrees
    std::uint32_t saturation = 100;                  ///< percent
    std::uint32_t redRatio = 1000, blueRatio = 1000; ///< to green, in thousandths

    bool operator==(const PictureSettings &) const = default;
    const PixelFormat &Format() const;
    std::size_t LineBytes() const { return std::size_t{width} * Format().bytesPerPixel; }
    std::size_t ImageBytes() const { return LineBytes() * height; }
};

/// Light or signal of the three colours, 0 to s_white.
struct Signal {
    std::int32_t red, green, blue;
};
constexpr std::int32_t s_white = 4095;

/// The moving subject: a disc, in sensor coordinates.
struct Subject {
    std::int64_t x, y, radius;
};

/// A range of columns or lines; empty when last < first.
struct Interval {
    std::int64_t first, last;
    bool IsEmpty() const { return last < first; }
};

class Scene {
  public:
    explicit Scene(const PictureSettings &settings);

    /// The picture without subject and block id.
    Signal Background(std::uint32_t x, std::uint32_t y) const;
    Signal SubjectSignal() const;
    Subject SubjectOf(std::uint64_t block) const;
    /// The lines of the image that the subject meets, and its columns in one of them.
    Interval SubjectLines(const Subject &subject) const;
    Interval SubjectColumns(const Subject &subject, std::int64_t line) const;
    bool ShowsSubject(const Subject &subject, std::uint32_t x, std::uint32_t y) const;
    /// Writes one pixel; returns the bytes after it.
    std::byte *Encode(Signal signal, std::uint32_t x, std::uint32_t y, std::byte *to) const;

  private:
    std::int64_t SensorX(std::int64_t x) const;
    std::int64_t SensorY(std::int64_t y) const;
    Signal Light(std::int64_t x, std::int64_t y) const;
    Signal SharpLight(std::int64_t x, std::int64_t y) const;
    Signal Develop(Signal light) const;

    const PictureSettings settings_;
    const PixelFormat &format_;
    const std::int64_t stepX_, stepY_;                  // columns and lines of the sensor for one of the image
    std::int64_t redFactor_, greenFactor_, blueFactor_; // light to signal, 16 bits after the point
    std::int64_t colours_[3][3];                        // hue and saturation, 12 bits after the point
    bool hasColours_;
    std::vector<std::uint16_t> gamma_; // empty when it changes nothing
};

/// The block id in the picture: its bits in line 0, its digits in a black box below.
class BlockIdMark {
  public:
    BlockIdMark(const PictureSettings &settings, std::uint64_t block);

    /// White (true), black (false), or no part of the mark.
    std::optional<bool> At(std::uint32_t x, std::uint32_t y) const;
    std::uint32_t BitColumns() const { return bitColumns_; }
    bool Bit(std::uint32_t x) const { return (block_ >> (bitColumns_ - 1 - x) & 1) != 0; }
    /// Side of the squares that the digits and their box are made of.
    std::uint32_t Scale() const { return scale_; }
    Interval BoxLines() const { return {scale_, std::int64_t{scale_} * 10 - 1}; }
    Interval BoxColumns() const { return {scale_, std::int64_t{scale_} * (2 + 6 * digitCount_) - 1}; }

  private:
    std::uint64_t block_;
    std::uint32_t bitColumns_;
    std::uint32_t scale_;
    std::uint32_t digitCount_ = 0;
    std::array<std::uint8_t, 20> digits_{};
};

/// Draws a whole image pixel by pixel; `image` has ImageBytes().
void RenderReference(const PictureSettings &settings, std::uint64_t block, std::span<std::byte> image);

} // namespace Orvi::Vcam
