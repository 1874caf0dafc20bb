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
        if (scene_.HasImage()) {
            line.resize(width_);
            for (size_t i = 0; i < width_; ++i) {
                line[i] = scene_.Light(static_cast<int64_t>(i) - 1, y);
            }
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
    Signal First()
    {
        if (!first_) {
            first_ = scene_.Light(-1, 0);
        }
        return *first_;
    }

    const Scene &scene_;
    const size_t width_;
    std::optional<Signal> first_;
    std::vector<Signal> boards_[2];
    int32_t boardGreen_[2]{};
};

/// What development makes of each brightness, as long as colours do not mix.
std::vector<Signal> MakeTones(const Scene &scene, const PictureSettings &settings)
{
    const int32_t brightest = settings.sharpness != 0 ? scene.MaxSharpLight() : scene.MaxLight();
    std::vector<Signal> tones;
    tones.reserve(static_cast<size_t>(brightest) + 1);
    const bool isFinished = !scene.Develop().MixesColours();
    for (int32_t light = 0; light <= brightest; ++light) {
        tones.push_back(isFinished ? scene.Develop()(Grey(light)) : scene.Develop().Expose(Grey(light)));
    }
    return tones;
}

void DrawScene(const Scene &scene, const PictureSettings &settings, std::span<std::byte> image)
{
    const PixelFormat &format = settings.Format();
    const std::vector<Signal> tones = MakeTones(scene, settings);
    const bool isMono = format.colours == Colours::Mono;
    const bool mixesColours = scene.Develop().MixesColours();
    const auto sharpness = static_cast<int32_t>(settings.sharpness);
    const auto tone = [&tones](int32_t light) -> const Signal & { return tones[static_cast<size_t>(light)]; };

    Lights lights(scene, settings);
    std::vector<Signal> above, here, below, signals(settings.width);
    lights.Fill(0, here);
    if (sharpness != 0) {
        lights.Fill(-1, above);
        lights.Fill(1, below);
    }
    std::byte *to = image.data();
    for (uint32_t y = 0; y < settings.height; ++y) {
        for (size_t x = 0; x < signals.size(); ++x) {
            const size_t at = x + 1;
            Signal light = here[at];
            if (sharpness != 0) {
                const auto sharpen = [&](int32_t Signal::*colour) {
                    const int32_t own = light.*colour;
                    const int32_t difference =
                        4 * own - here[at - 1].*colour - here[at + 1].*colour - above[at].*colour - below[at].*colour;
                    return std::max(0, own + difference * sharpness / 8);
                };
                light = {sharpen(&Signal::red), sharpen(&Signal::green), sharpen(&Signal::blue)};
            }
            if (isMono) {
                signals[x] = tone((light.red + 2 * light.green + light.blue) / 4);
                continue;
            }
            const Signal signal{tone(light.red).red, tone(light.green).green, tone(light.blue).blue};
            signals[x] = mixesColours ? scene.Develop().Finish(signal) : signal;
        }
        to = EncodePixels(format, signals, 0, y, to);
        if (sharpness != 0) {
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
