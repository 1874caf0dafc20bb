#include "vcam/Background.h"

#include "vcam/PixelEncoder.h"

#include <cstring>

namespace Orvi::Vcam {

namespace {

using std::int32_t, std::int64_t, std::size_t, std::uint32_t;

/// The light of one line with a column more on both sides. Red and blue do not change from line to line but for the
/// chessboard, green only from line to line: a line is put together from two columns' worth of lines.
class Lights {
  public:
    Lights(const Scene &scene, const PictureSettings &settings) : scene_(scene), width_(settings.width + 2) {}

    void Fill(int64_t y, std::vector<Signal> &line)
    {
        if (scene_.Image() != nullptr) {
            FillWithImage(y, line);
            return;
        }
        const Signal corner = scene_.Light(-1, y);
        // The first light of a line tells whether its board begins bright: red is the board and the column alone.
        std::vector<Signal> &board = boards_[corner.red == First().red ? 0 : 1];
        if (board.empty()) {
            board.resize(width_);
            for (size_t i = 0; i < width_; ++i) {
                board[i] = scene_.Light(static_cast<int64_t>(i) - 1, y);
            }
            boardGreen_[&board == &boards_[0] ? 0 : 1] = corner.green;
        }
        const int32_t down = corner.green - boardGreen_[&board == &boards_[0] ? 0 : 1];
        line = board;
        if (down != 0) {
            for (Signal &light : line) {
                light.green += down;
            }
        }
    }

  private:
    void FillWithImage(int64_t y, std::vector<Signal> &line)
    {
        const SceneImage &image = *scene_.Image();
        for (size_t i = columns_.size(); i < width_; ++i) {
            columns_.push_back(scene_.ImageColumn(static_cast<int64_t>(i) - 1));
        }
        line.assign(width_, Grey(0));
        const std::optional<uint32_t> row = scene_.ImageLine(y);
        for (size_t i = 0; row && i < width_; ++i) {
            if (columns_[i]) {
                line[i] = image.At(*columns_[i], *row);
            }
        }
    }
    Signal First()
    {
        if (!first_) {
            first_ = scene_.Light(-1, 0);
        }
        return *first_;
    }

    const Scene &scene_;
    const size_t width_;
    std::vector<std::optional<uint32_t>> columns_; // of the image
    std::optional<Signal> first_;
    std::vector<Signal> boards_[2];
    int32_t boardGreen_[2]{};
};

void Sharpen(const Signal *above, const Signal *here, const Signal *below, int32_t sharpness, std::span<Signal> to)
{
    const auto sharpen = [=](size_t x, int32_t Signal::*colour) {
        const int32_t own = here[x].*colour;
        const int32_t around = (here - 1)[x].*colour + (here + 1)[x].*colour + above[x].*colour + below[x].*colour;
        return std::max(0, own + (4 * own - around) * sharpness / 8);
    };
    for (size_t x = 0; x < to.size(); ++x) {
        to[x] = {sharpen(x, &Signal::red), sharpen(x, &Signal::green), sharpen(x, &Signal::blue)};
    }
}

void DrawScene(const Scene &scene, const PictureSettings &settings, std::span<std::byte> image)
{
    const PixelFormat &format = settings.Format();
    const Development &develop = scene.Develop();
    const bool isMono = format.colours == Colours::Mono;
    const bool isSharpened = settings.sharpness != 0;

    Lights lights(scene, settings);
    std::vector<Signal> above, here, below, line(settings.width);
    lights.Fill(0, here);
    if (isSharpened) {
        lights.Fill(-1, above);
        lights.Fill(1, below);
    }
    std::byte *to = image.data();
    for (uint32_t y = 0; y < settings.height; ++y) {
        std::span<const Signal> light(here.data() + 1, line.size());
        if (isSharpened) {
            Sharpen(above.data() + 1, light.data(), below.data() + 1, static_cast<int32_t>(settings.sharpness), line);
            light = line;
        }
        if (isMono) {
            to = EncodeEach(format, line.size(), 0, y, to,
                            [&develop, light](size_t x) { return Grey(develop.Brightness(light[x])); });
        } else {
            to = EncodePixels(format, develop.Line(light, line), 0, y, to);
        }
        if (isSharpened) {
            std::swap(above, here);
            std::swap(here, below);
            lights.Fill(int64_t{y} + 2, below);
        } else {
            lights.Fill(int64_t{y} + 1, here);
        }
    }
}

/// Test patterns but one are the same in all lines; Bayer formats tell even and odd lines apart.
void DrawPattern(const Scene &scene, const PictureSettings &settings, std::span<std::byte> image)
{
    constexpr uint32_t verticalRamp = 8;
    const size_t lineBytes = settings.LineBytes();
    const bool isAlike = settings.testPattern != verticalRamp;
    std::vector<Signal> signals(settings.width);
    for (uint32_t y = 0; y < settings.height; ++y) {
        std::byte *to = image.data() + y * lineBytes;
        if (isAlike && y >= 2) {
            std::memcpy(to, to - 2 * lineBytes, lineBytes);
            continue;
        }
        for (uint32_t x = 0; x < settings.width; ++x) {
            signals[x] = scene.Background(x, y);
        }
        EncodePixels(settings.Format(), signals, 0, y, to);
    }
}

} // namespace

void DrawBackground(const Scene &scene, const PictureSettings &settings, std::span<std::byte> image)
{
    if (settings.testPattern != 0) {
        DrawPattern(scene, settings, image);
    } else {
        DrawScene(scene, settings, image);
    }
}

} // namespace Orvi::Vcam
