#pragma once
// Draws images cheaply: the background once for all images with the same settings, then only the subject and the
// block id. Pixels are those of RenderReference().

#include "vcam/Background.h"

#include <memory>
#include <vector>

namespace Orvi::Vcam {

class Painter {
  public:
    /// The image; valid until the next call. Allocates only when the settings have changed.
    std::span<const std::byte> Draw(const PictureSettings &settings, std::uint64_t block);

  private:
    struct Area {
        Interval lines{0, -1}, columns{0, -1};
    };
    /// Two lines, even and odd, of one signal: spans of them are copied into the image.
    using Brush = std::vector<std::byte>;

    void Prepare(const PictureSettings &settings);
    Brush MakeBrush(Signal signal) const;
    void Paint(const Brush &brush, std::int64_t line, Interval columns);
    void Restore(const Area &area);
    void DrawSubject(const Subject &subject);
    void DrawBlemishes(const Subject &subject);
    std::size_t Offset(std::int64_t line, std::int64_t column) const;
    void DrawMark(std::uint64_t block);

    PictureSettings settings_;
    std::unique_ptr<Scene> scene_;
    const PixelFormat *format_ = nullptr;
    std::size_t lineBytes_ = 0;
    std::vector<std::byte> background_, image_;
    Brush subject_, white_, black_;
    Area subjectArea_, markArea_;
};

} // namespace Orvi::Vcam
