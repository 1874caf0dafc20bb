#pragma once
// What the sensor sees and what becomes of it: every pixel as a pure function of the settings and the block id. The
// camera draws with it, and tests compare delivered images with RenderReference().

#include "vcam/BlockIdMark.h"
#include "vcam/Development.h"
#include "vcam/Interval.h"

#include <optional>
#include <span>

namespace Orvi::Vcam {

/// The moving subject: a disc, in sensor coordinates.
struct Subject {
    std::int64_t x, y, radius;
};

/// A pixel of the image that does not show what it should: defective, or filled in by the defect correction.
struct Blemish {
    enum class Kind : std::uint8_t { White, Black, Corrected };
    std::uint32_t x, y;
    Kind kind;
};

class Scene {
  public:
    explicit Scene(const PictureSettings &settings);

    /// The picture without subject, blemishes and block id.
    Signal Background(std::uint32_t x, std::uint32_t y) const;
    Signal SubjectSignal() const;
    Subject SubjectOf(std::uint64_t block) const;
    /// The lines of the image that the subject meets, and its columns in one of them.
    Interval SubjectLines(const Subject &subject) const;
    Interval SubjectColumns(const Subject &subject, std::int64_t line) const;
    bool ShowsSubject(const Subject &subject, std::uint32_t x, std::uint32_t y) const;
    /// At most one for each pixel.
    const std::vector<Blemish> &Blemishes() const { return blemishes_; }
    Signal BlemishSignal(const Blemish &blemish, const Subject &subject) const;

    // For those who draw the background in one go
    const Development &Develop() const { return develop_; }
    /// Light at a place of the image or just beside it, without sharpening.
    Signal Light(std::int64_t x, std::int64_t y) const;
    const SceneImage *Image() const { return settings_.image.get(); }
    /// The column or the line of the image in front of the sensor that is seen there; nothing beside it.
    std::optional<std::uint32_t> ImageColumn(std::int64_t x) const;
    std::optional<std::uint32_t> ImageLine(std::int64_t y) const;

  private:
    std::int64_t SensorX(std::int64_t x) const;
    std::int64_t SensorY(std::int64_t y) const;
    std::uint32_t SeenX(std::int64_t x) const;
    std::uint32_t SeenY(std::int64_t y) const;
    Signal SharpLight(std::int64_t x, std::int64_t y) const;
    void AddBlemish(SensorPixel pixel, Blemish::Kind kind);

    const PictureSettings settings_;
    const std::int64_t stepX_, stepY_; // columns and lines of the sensor for one of the image
    const Development develop_;
    std::vector<Blemish> blemishes_;
};

/// Draws a whole image pixel by pixel; `image` has ImageBytes().
void RenderReference(const PictureSettings &settings, std::uint64_t block, std::span<std::byte> image);

} // namespace Orvi::Vcam
