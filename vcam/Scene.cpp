#include "vcam/Scene.h"

#include "vcam/Wire.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

using std::int64_t, std::uint32_t, std::uint64_t;

/// At this exposure and 0 dB a signal equals the light.
constexpr double s_neutralExposure = 10000;

constexpr Signal s_subjectLight{3900, 3800, 3000};

Signal Grey(uint32_t value) { return {value, value, value}; }

/// Goes up and down between 0 and `span`.
int64_t Swing(uint64_t way, uint64_t span)
{
    const uint64_t phase = way % (2 * span);
    return static_cast<int64_t>(phase <= span ? phase : 2 * span - phase);
}

int64_t Root(int64_t square)
{
    auto root = static_cast<int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root > square) {
        --root;
    }
    while ((root + 1) * (root + 1) <= square) {
        ++root;
    }
    return root;
}

Interval Clip(int64_t first, int64_t last, int64_t size)
{
    return {std::max<int64_t>(first, 0), std::min(last, size - 1)};
}

Signal ColourBar(uint32_t bar)
{
    // White, yellow, cyan, green, magenta, red, blue, black: green changes slowest, then red, then blue.
    const uint32_t inverse = 7 - bar;
    return {inverse & 2 ? s_white : 0, inverse & 4 ? s_white : 0, inverse & 1 ? s_white : 0};
}

// clang-format off
constexpr std::uint8_t s_digits[10][7] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x06, 0x08, 0x10, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C},
};
// clang-format on

} // namespace

const PixelFormat &PictureSettings::Format() const
{
    const PixelFormat *format = FindPixelFormat(pixelFormat);
    return format != nullptr ? *format : s_pixelFormats[0];
}

Scene::Scene(const PictureSettings &settings) : settings_(settings), format_(settings_.Format())
{
    const double gain = std::pow(10.0, settings.gain / 2000.0);
    factor_ = static_cast<uint64_t>(std::llround(settings.exposure / s_neutralExposure * gain * 65536));
}

uint32_t Scene::Develop(uint64_t light) const
{
    return static_cast<uint32_t>(std::min<uint64_t>((light * factor_ >> 16) + settings_.blackLevel, s_white));
}

Signal Scene::Background(uint32_t x, uint32_t y) const
{
    switch (settings_.testPattern) {
    case 1:
        return Grey(0);
    case 2:
        return Grey(s_white);
    case 3:
        return Grey(2730);
    case 4:
        return Grey(1365);
    case 5:
        return Grey(x * 16 & s_white);
    case 6:
        return Grey(x * 16 / settings_.width * 273);
    case 7:
        return ColourBar(x * 8 / settings_.width);
    default:
        break;
    }
    // Colours that change over the sensor, under a chessboard.
    const uint32_t sensorX = x + settings_.offsetX;
    const uint32_t sensorY = y + settings_.offsetY;
    const uint32_t right = 1600 * sensorX / settings_.sensorWidth;
    const uint32_t down = 1600 * sensorY / settings_.sensorHeight;
    const uint32_t floor = (sensorX / 64 + sensorY / 64) % 2 != 0 ? 250 : 400;
    const Signal light{floor + right, floor + down, floor + 1600 - right};
    if (format_.colours == Colours::Mono) {
        return Grey(Develop((light.red + 2 * light.green + light.blue) / 4));
    }
    return {Develop(light.red), Develop(light.green), Develop(light.blue)};
}

Signal Scene::SubjectSignal() const
{
    const Signal light = format_.colours != Colours::Mono
                             ? s_subjectLight
                             : Grey((s_subjectLight.red + 2 * s_subjectLight.green + s_subjectLight.blue) / 4);
    // A test pattern is put in behind the sensor, where exposure and gain have no say any more.
    return settings_.testPattern != 0 ? light : Signal{Develop(light.red), Develop(light.green), Develop(light.blue)};
}

Subject Scene::SubjectOf(uint64_t block) const
{
    const uint32_t width = settings_.sensorWidth;
    const uint32_t height = settings_.sensorHeight;
    const uint32_t radius = std::max(2u, std::min(width, height) / 24);
    const uint64_t stepX = std::max(1u, width / 120);
    const uint64_t stepY = std::max(1u, height / 170);
    return {Swing(block * stepX, std::max<int64_t>(1, int64_t{width} - 2 * radius)) + radius,
            Swing(block * stepY, std::max<int64_t>(1, int64_t{height} - 2 * radius)) + radius, radius};
}

Interval Scene::SubjectLines(const Subject &subject) const
{
    const int64_t centre = subject.y - settings_.offsetY;
    return Clip(centre - subject.radius, centre + subject.radius, settings_.height);
}

Interval Scene::SubjectColumns(const Subject &subject, int64_t line) const
{
    const int64_t down = line + settings_.offsetY - subject.y;
    const int64_t half = Root(subject.radius * subject.radius - down * down);
    const int64_t centre = subject.x - settings_.offsetX;
    return Clip(centre - half, centre + half, settings_.width);
}

std::byte *Scene::Encode(Signal signal, uint32_t x, uint32_t y, std::byte *to) const
{
    const auto put8 = [&to](uint32_t value) { *to++ = static_cast<std::byte>(value >> 4); };
    if (format_.colours == Colours::Rgb || format_.colours == Colours::Bgr) {
        const bool isRgb = format_.colours == Colours::Rgb;
        put8(isRgb ? signal.red : signal.blue);
        put8(signal.green);
        put8(isRgb ? signal.blue : signal.red);
        return to;
    }
    uint32_t value = signal.green; // of a grey signal all three are alike
    if (format_.colours == Colours::Bayer) {
        const bool isRedColumn = x % 2 == format_.redX;
        const bool isRedLine = y % 2 == format_.redY;
        value = isRedColumn && isRedLine ? signal.red : !isRedColumn && !isRedLine ? signal.blue : signal.green;
    }
    if (format_.bytesPerPixel == 1) {
        put8(value);
        return to;
    }
    // More than 12 bits are filled from the top again, so that white is all ones.
    const uint32_t scaled =
        format_.bits > 12 ? value << (format_.bits - 12) | value >> (24 - format_.bits) : value >> (12 - format_.bits);
    StoreLe(to, static_cast<std::uint16_t>(scaled));
    return to + 2;
}

BlockIdMark::BlockIdMark(const PictureSettings &settings, uint64_t block)
    : block_(block),
      bitColumns_(std::min(settings.width, 64u)),
      scale_(std::clamp(std::min(settings.width / 160, settings.height / 100), 1u, 8u))
{
    do {
        digits_[digitCount_++] = static_cast<std::uint8_t>(block % 10);
        block /= 10;
    } while (block != 0);
    std::reverse(digits_.begin(), digits_.begin() + digitCount_);
}

std::optional<bool> BlockIdMark::At(uint32_t x, uint32_t y) const
{
    if (y == 0 && x < bitColumns_) {
        return Bit(x);
    }
    const Interval lines = BoxLines(), columns = BoxColumns();
    if (y < lines.first || y > lines.last || x < columns.first || x > columns.last) {
        return std::nullopt;
    }
    // A margin of one dot around cells of six by seven dots.
    const uint32_t column = x / scale_ - 2;
    const uint32_t line = y / scale_ - 2;
    if (x / scale_ < 2 || y / scale_ < 2 || line >= 7 || column % 6 == 5 || column / 6 >= digitCount_) {
        return false;
    }
    return (s_digits[digits_[column / 6]][line] >> (4 - column % 6) & 1) != 0;
}

void RenderReference(const PictureSettings &settings, uint64_t block, std::span<std::byte> image)
{
    const Scene scene(settings);
    const BlockIdMark mark(settings, block);
    const Subject subject = scene.SubjectOf(block);
    const Signal subjectSignal = scene.SubjectSignal();
    std::byte *to = image.data();
    for (uint32_t y = 0; y < settings.height; ++y) {
        const int64_t down = int64_t{y} + settings.offsetY - subject.y;
        for (uint32_t x = 0; x < settings.width; ++x) {
            const int64_t right = int64_t{x} + settings.offsetX - subject.x;
            const bool isSubject = right * right + down * down <= subject.radius * subject.radius;
            if (const std::optional<bool> part = mark.At(x, y)) {
                to = scene.Encode(Grey(*part ? s_white : 0), x, y, to);
            } else {
                to = scene.Encode(isSubject ? subjectSignal : scene.Background(x, y), x, y, to);
            }
        }
    }
}

} // namespace Orvi::Vcam
