#include "vcam/Painter.h"

#include <algorithm>
#include <cstring>

namespace Orvi::Vcam {

namespace {

std::size_t Index(std::int64_t at) { return static_cast<std::size_t>(at); }

} // namespace

std::span<const std::byte> Painter::Draw(const PictureSettings &settings, std::uint64_t block)
{
    if (scene_ == nullptr || !(settings == settings_)) {
        Prepare(settings);
    } else {
        Restore(subjectArea_);
        Restore(markArea_);
    }
    DrawSubject(block);
    DrawMark(block);
    return image_;
}

void Painter::Prepare(const PictureSettings &settings)
{
    settings_ = settings;
    scene_ = std::make_unique<Scene>(settings);
    lineBytes_ = settings.LineBytes();
    pixelBytes_ = settings.Format().bytesPerPixel;
    background_.resize(settings.ImageBytes());
    std::byte *to = background_.data();
    for (std::uint32_t y = 0; y < settings.height; ++y) {
        for (std::uint32_t x = 0; x < settings.width; ++x) {
            to = scene_->Encode(scene_->Background(x, y), x, y, to);
        }
    }
    image_ = background_;
    subject_ = MakeBrush(scene_->SubjectSignal());
    white_ = MakeBrush({s_white, s_white, s_white});
    black_ = MakeBrush({0, 0, 0});
}

Painter::Brush Painter::MakeBrush(Signal signal) const
{
    Brush brush(2 * lineBytes_);
    std::byte *to = brush.data();
    for (std::uint32_t y = 0; y < 2; ++y) {
        for (std::uint32_t x = 0; x < settings_.width; ++x) {
            to = scene_->Encode(signal, x, y, to);
        }
    }
    return brush;
}

void Painter::Paint(const Brush &brush, std::int64_t line, Interval columns)
{
    columns.last = std::min<std::int64_t>(columns.last, settings_.width - 1);
    if (columns.IsEmpty()) {
        return;
    }
    const std::size_t offset = Index(columns.first) * pixelBytes_;
    std::memcpy(image_.data() + Index(line) * lineBytes_ + offset, brush.data() + Index(line % 2) * lineBytes_ + offset,
                Index(columns.last - columns.first + 1) * pixelBytes_);
}

void Painter::Restore(const Area &area)
{
    const std::int64_t lastLine = std::min<std::int64_t>(area.lines.last, settings_.height - 1);
    const std::int64_t lastColumn = std::min<std::int64_t>(area.columns.last, settings_.width - 1);
    if (lastColumn < area.columns.first) {
        return;
    }
    for (std::int64_t line = area.lines.first; line <= lastLine; ++line) {
        const std::size_t offset = Index(line) * lineBytes_ + Index(area.columns.first) * pixelBytes_;
        std::memcpy(image_.data() + offset, background_.data() + offset,
                    Index(lastColumn - area.columns.first + 1) * pixelBytes_);
    }
}

void Painter::DrawSubject(std::uint64_t block)
{
    const Subject subject = scene_->SubjectOf(block);
    subjectArea_ = {scene_->SubjectLines(subject), {settings_.width, -1}};
    for (std::int64_t line = subjectArea_.lines.first; line <= subjectArea_.lines.last; ++line) {
        const Interval columns = scene_->SubjectColumns(subject, line);
        Paint(subject_, line, columns);
        if (!columns.IsEmpty()) {
            subjectArea_.columns.first = std::min(subjectArea_.columns.first, columns.first);
            subjectArea_.columns.last = std::max(subjectArea_.columns.last, columns.last);
        }
    }
}

void Painter::DrawMark(std::uint64_t block)
{
    const BlockIdMark mark(settings_, block);
    // The bits are not restored: the next image has its own in the same place.
    for (std::uint32_t x = 0; x < mark.BitColumns(); ++x) {
        Paint(mark.Bit(x) ? white_ : black_, 0, {x, x});
    }
    markArea_ = {mark.BoxLines(), mark.BoxColumns()};
    const std::int64_t lastLine = std::min<std::int64_t>(markArea_.lines.last, settings_.height - 1);
    const std::int64_t lastColumn = std::min<std::int64_t>(markArea_.columns.last, settings_.width - 1);
    // The mark is made of squares: one line of each row of squares tells the runs of all its lines.
    const std::int64_t dot = mark.Scale();
    for (std::int64_t row = markArea_.lines.first; row <= lastLine; row += dot) {
        const auto isWhite = [&](std::int64_t column) {
            return mark.At(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row)) == true;
        };
        for (std::int64_t start = markArea_.columns.first; start <= lastColumn;) {
            const bool isRunWhite = isWhite(start);
            std::int64_t end = start + dot;
            while (end <= lastColumn && isWhite(end) == isRunWhite) {
                end += dot;
            }
            for (std::int64_t line = row; line < row + dot && line <= lastLine; ++line) {
                Paint(isRunWhite ? white_ : black_, line, {start, end - 1});
            }
            start = end;
        }
    }
}

} // namespace Orvi::Vcam
