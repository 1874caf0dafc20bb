#include "vcam/Scene.h"

#include "vcam/Wire.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

using std::int32_t, std::int64_t, std::uint32_t, std::uint64_t;

/// At this exposure and 0 dB a signal equals the light.
constexpr double s_neutralExposure = 10000;

constexpr Signal s_subjectLight{3900, 3800, 3000};

Signal Grey(int32_t value) { return {value, value, value}; }

/// Goes up and down between 0 and `length`.
int64_t Swing(uint64_t way, int64_t length)
{
    const auto span = static_cast<uint64_t>(std::max<int64_t>(1, length));
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

Scene::Scene(const PictureSettings &settings)
    : settings_(settings),
      format_(settings_.Format()),
      stepX_(int64_t{settings.binningX} * settings.decimationX),
      stepY_(int64_t{settings.binningY} * settings.decimationY)
{
    const double gain = std::pow(10.0, settings.gain / 2000.0);
    // A bin sums up the light of its pixels.
    const double factor = settings.exposure / s_neutralExposure * gain * settings.binningX * settings.binningY * 65536;
    const bool isMono = format_.colours == Colours::Mono;
    redFactor_ = std::llround(factor * (isMono ? 1 : settings.redRatio / 1000.0));
    greenFactor_ = std::llround(factor);
    blueFactor_ = std::llround(factor * (isMono ? 1 : settings.blueRatio / 1000.0));

    hasColours_ = (format_.colours == Colours::Rgb || format_.colours == Colours::Bgr) &&
                  (settings.hue != 0 || settings.saturation != 100);
    // Hue turns about the grey axis, saturation stretches away from it.
    const double angle = settings.hue / 1800.0 * 3.14159265358979323846;
    const double saturation = settings.saturation / 100.0;
    const double grey = (1 - std::cos(angle)) / 3, skew = std::sin(angle) / std::sqrt(3.0);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const double turned = row == column                 ? std::cos(angle) + grey
                                  : (column - row + 3) % 3 == 1 ? grey - skew
                                                                : grey + skew;
            colours_[row][column] = std::llround((saturation * turned + (1 - saturation) / 3) * 4096);
        }
    }
    if (settings.gamma != 100) {
        for (int32_t i = 0; i <= s_white; ++i) {
            const double value = s_white * std::pow(i / double{s_white}, settings.gamma / 100.0);
            gamma_.push_back(static_cast<std::uint16_t>(std::llround(value)));
        }
    }
}

int64_t Scene::SensorX(int64_t x) const
{
    return (settings_.offsetX + (settings_.reverseX ? int64_t{settings_.width} - 1 - x : x)) * stepX_;
}

int64_t Scene::SensorY(int64_t y) const
{
    return (settings_.offsetY + (settings_.reverseY ? int64_t{settings_.height} - 1 - y : y)) * stepY_;
}

/// Colours that change over the sensor, under a chessboard.
Signal Scene::Light(int64_t x, int64_t y) const
{
    const auto sensorX = static_cast<uint32_t>(std::clamp<int64_t>(SensorX(x), 0, settings_.sensorWidth - 1));
    const auto sensorY = static_cast<uint32_t>(std::clamp<int64_t>(SensorY(y), 0, settings_.sensorHeight - 1));
    const auto right = static_cast<int32_t>(1600 * sensorX / settings_.sensorWidth);
    const auto down = static_cast<int32_t>(1600 * sensorY / settings_.sensorHeight);
    const int32_t floor = (sensorX / 64 + sensorY / 64) % 2 != 0 ? 250 : 400;
    return {floor + right, floor + down, floor + 1600 - right};
}

Signal Scene::SharpLight(int64_t x, int64_t y) const
{
    const Signal light = Light(x, y);
    if (settings_.sharpness == 0) {
        return light;
    }
    const Signal around[] = {Light(x - 1, y), Light(x + 1, y), Light(x, y - 1), Light(x, y + 1)};
    const auto sharpen = [&](int32_t Signal::*colour) {
        int32_t difference = 4 * light.*colour;
        for (const Signal &neighbour : around) {
            difference -= neighbour.*colour;
        }
        return std::max(0, light.*colour + difference * static_cast<int32_t>(settings_.sharpness) / 8);
    };
    return {sharpen(&Signal::red), sharpen(&Signal::green), sharpen(&Signal::blue)};
}

Signal Scene::Develop(Signal light) const
{
    if (format_.colours == Colours::Mono) {
        light = Grey((light.red + 2 * light.green + light.blue) / 4);
    }
    const auto expose = [this](int32_t value, int64_t factor) {
        return static_cast<int32_t>(std::min<int64_t>((value * factor >> 16) + settings_.blackLevel, s_white));
    };
    Signal signal{expose(light.red, redFactor_), expose(light.green, greenFactor_), expose(light.blue, blueFactor_)};
    if (hasColours_) {
        const auto mix = [&signal](const int64_t(&row)[3]) {
            const int64_t sum = row[0] * signal.red + row[1] * signal.green + row[2] * signal.blue;
            return static_cast<int32_t>(std::clamp<int64_t>(sum / 4096, 0, s_white));
        };
        signal = {mix(colours_[0]), mix(colours_[1]), mix(colours_[2])};
    }
    if (!gamma_.empty()) {
        const auto bend = [this](int32_t value) { return int32_t{gamma_[static_cast<std::size_t>(value)]}; };
        signal = {bend(signal.red), bend(signal.green), bend(signal.blue)};
    }
    return signal;
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
        return Grey(static_cast<int32_t>(x * 16) & s_white);
    case 6:
        return Grey(static_cast<int32_t>(x * 16 / settings_.width * 273));
    case 7:
        return ColourBar(x * 8 / settings_.width);
    default:
        return Develop(SharpLight(x, y));
    }
}

Signal Scene::SubjectSignal() const
{
    // A test pattern is put in behind the sensor, where exposure and gain have no say any more.
    return settings_.testPattern != 0 ? s_subjectLight : Develop(s_subjectLight);
}

Subject Scene::SubjectOf(uint64_t block) const
{
    const uint32_t width = settings_.sensorWidth;
    const uint32_t height = settings_.sensorHeight;
    const uint32_t radius = std::max(2u, std::min(width, height) / 24);
    const uint64_t stepX = std::max(1u, width / 120);
    const uint64_t stepY = std::max(1u, height / 170);
    return {Swing(block * stepX, int64_t{width} - 2 * radius) + radius,
            Swing(block * stepY, int64_t{height} - 2 * radius) + radius, radius};
}

/// The columns or lines of an image that show what lies on the sensor within half of centre.
static Interval Shown(int64_t centre, int64_t half, int64_t step, uint32_t offset, uint32_t size, bool isReverse)
{
    const auto up = [step](int64_t value) { return value <= 0 ? value / step : (value + step - 1) / step; };
    const int64_t first = up(centre - half) - offset;
    const int64_t last = (centre + half) / step - offset;
    return isReverse ? Clip(int64_t{size} - 1 - last, int64_t{size} - 1 - first, size) : Clip(first, last, size);
}

Interval Scene::SubjectLines(const Subject &subject) const
{
    return Shown(subject.y, subject.radius, stepY_, settings_.offsetY, settings_.height, settings_.reverseY);
}

Interval Scene::SubjectColumns(const Subject &subject, int64_t line) const
{
    const int64_t down = SensorY(line) - subject.y;
    const int64_t half = Root(subject.radius * subject.radius - down * down);
    return Shown(subject.x, half, stepX_, settings_.offsetX, settings_.width, settings_.reverseX);
}

bool Scene::ShowsSubject(const Subject &subject, uint32_t x, uint32_t y) const
{
    const int64_t right = SensorX(x) - subject.x;
    const int64_t down = SensorY(y) - subject.y;
    return right * right + down * down <= subject.radius * subject.radius;
}

std::byte *Scene::Encode(Signal signal, uint32_t x, uint32_t y, std::byte *to) const
{
    const auto put8 = [&to](int32_t value) { *to++ = static_cast<std::byte>(value >> 4); };
    if (format_.colours == Colours::Rgb || format_.colours == Colours::Bgr) {
        const bool isRgb = format_.colours == Colours::Rgb;
        put8(isRgb ? signal.red : signal.blue);
        put8(signal.green);
        put8(isRgb ? signal.blue : signal.red);
        return to;
    }
    int32_t value = signal.green; // of a grey signal all three are alike
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
    const int32_t scaled =
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
        for (uint32_t x = 0; x < settings.width; ++x) {
            if (const std::optional<bool> part = mark.At(x, y)) {
                to = scene.Encode(Grey(*part ? s_white : 0), x, y, to);
            } else if (scene.ShowsSubject(subject, x, y)) {
                to = scene.Encode(subjectSignal, x, y, to);
            } else {
                to = scene.Encode(scene.Background(x, y), x, y, to);
            }
        }
    }
}

} // namespace Orvi::Vcam
