#include "vcam/Painter.h"

#include "vcam/PixelEncoder.h"

#include <algorithm>
#include <cstring>

namespace Orvi::Vcam {

std::size_t Painter::Offset(std::int64_t line, std::int64_t column) const
{
    return static_cast<std::size_t>(line) * lineBytes_ + format_->BytesBefore(static_cast<std::uint32_t>(column));
}

std::span<const std::byte> Painter::Draw(const PictureSettings &settings, std::uint64_t block)
{
    if (scene_ == nullptr || !(settings == settings_)) {
        Prepare(settings);
    } else {
        Restore(subjectArea_);
        Restore(markArea_);
    }
    const Subject subject = scene_->SubjectOf(block);
    DrawSubject(subject);
    DrawBlemishes(subject);
    DrawMark(block);
    return image_;
}

void Painter::Prepare(const PictureSettings &settings)
{
    settings_ = settings;
    scene_ = std::make_unique<Scene>(settings);
    lineBytes_ = settings.LineBytes();
    format_ = &settings_.Format();
    background_.resize(settings.ImageBytes());
    DrawBackground(*scene_, settings_, background_);
    image_ = background_;
    subject_ = MakeBrush(scene_->SubjectSignal());
    white_ = MakeBrush({s_white, s_white, s_white});
    black_ = MakeBrush({0, 0, 0});
}

Painter::Brush Painter::MakeBrush(Signal signal) const
{
    Brush brush(2 * lineBytes_);
    const std::vector<Signal> line(settings_.width, signal);
    std::byte *second = EncodePixels(*format_, line, 0, 0, brush.data());
    EncodePixels(*format_, line, 0, 1, second);
    return brush;
}

void Painter::Paint(const Brush &brush, std::int64_t line, Interval columns)
{
    columns.last = std::min<std::int64_t>(columns.last, settings_.width - 1);
    if (columns.IsEmpty()) {
        return;
    }
    std::memcpy(image_.data() + Offset(line, columns.first), brush.data() + Offset(line % 2, columns.first),
                Offset(0, columns.last + 1) - Offset(0, columns.first));
}

void Painter::Restore(const Area &area)
{
    const std::int64_t lastLine = std::min<std::int64_t>(area.lines.last, settings_.height - 1);
    const std::int64_t lastColumn = std::min<std::int64_t>(area.columns.last, settings_.width - 1);
    if (lastColumn < area.columns.first) {
        return;
    }
    for (std::int64_t line = area.lines.first; line <= lastLine; ++line) {
        const std::size_t offset = Offset(line, area.columns.first);
        std::memcpy(image_.data() + offset, background_.data() + offset, Offset(line, lastColumn + 1) - offset);
    }
}

void Painter::DrawBlemishes(const Subject &subject)
{
    for (const Blemish &blemish : scene_->Blemishes()) {
        const Signal signal = scene_->BlemishSignal(blemish, subject);
        EncodePixels(*format_, {&signal, 1}, blemish.x, blemish.y, image_.data() + Offset(blemish.y, blemish.x));
    }
}

void Painter::DrawSubject(const Subject &subject)
{
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
