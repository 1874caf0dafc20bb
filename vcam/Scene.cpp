#include "vcam/Scene.h"

#include "vcam/PixelEncoder.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

using std::int32_t, std::int64_t, std::uint32_t, std::uint64_t;

constexpr Signal s_subjectLight{62400, 60800, 48000};

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

} // namespace

const PixelFormat &PictureSettings::Format() const
{
    const PixelFormat *format = FindPixelFormat(pixelFormat);
    return format != nullptr ? *format : s_pixelFormats[0];
}

Scene::Scene(const PictureSettings &settings)
    : settings_(settings),
      stepX_(int64_t{settings.binningX} * settings.decimationX),
      stepY_(int64_t{settings.binningY} * settings.decimationY),
      develop_(settings)
{
    if (settings.testPattern != 0) {
        return;
    }
    for (const SensorPixel &pixel : settings.corrected) {
        AddBlemish(pixel, Blemish::Kind::Corrected);
    }
    if (!settings.showsDefects) {
        return;
    }
    for (const Defect &defect : DefectsOf(settings.sensorWidth, settings.sensorHeight)) {
        AddBlemish(defect, defect.isWhite ? Blemish::Kind::White : Blemish::Kind::Black);
    }
}

/// Where the image shows the pixel of the sensor, alone or in a bin; the first to claim a place has it.
void Scene::AddBlemish(SensorPixel pixel, Blemish::Kind kind)
{
    if (pixel.x % stepX_ >= settings_.binningX || pixel.y % stepY_ >= settings_.binningY) {
        return; // not read
    }
    int64_t x = pixel.x / stepX_ - settings_.offsetX;
    int64_t y = pixel.y / stepY_ - settings_.offsetY;
    x = settings_.reverseX ? int64_t{settings_.width} - 1 - x : x;
    y = settings_.reverseY ? int64_t{settings_.height} - 1 - y : y;
    if (x < 0 || y < 0 || x >= settings_.width || y >= settings_.height) {
        return;
    }
    const Blemish blemish{static_cast<uint32_t>(x), static_cast<uint32_t>(y), kind};
    const bool isTaken = std::ranges::any_of(
        blemishes_, [&](const Blemish &other) { return other.x == blemish.x && other.y == blemish.y; });
    if (!isTaken) {
        blemishes_.push_back(blemish);
    }
}

Signal Scene::BlemishSignal(const Blemish &blemish, const Subject &subject) const
{
    if (blemish.kind != Blemish::Kind::Corrected) {
        return Grey(blemish.kind == Blemish::Kind::White ? s_white : 0);
    }
    // The next pixel but one has the same colour in a Bayer pattern.
    const uint32_t x = blemish.x >= 2 ? blemish.x - 2 : blemish.x + 2;
    return ShowsSubject(subject, x, blemish.y) ? SubjectSignal() : Background(x, blemish.y);
}

int64_t Scene::SensorX(int64_t x) const
{
    return (settings_.offsetX + (settings_.reverseX ? int64_t{settings_.width} - 1 - x : x)) * stepX_;
}

int64_t Scene::SensorY(int64_t y) const
{
    return (settings_.offsetY + (settings_.reverseY ? int64_t{settings_.height} - 1 - y : y)) * stepY_;
}

/// A column of the sensor; what lies beside it looks like its edge.
uint32_t Scene::SeenX(int64_t x) const
{
    return static_cast<uint32_t>(std::clamp<int64_t>(SensorX(x), 0, int64_t{settings_.sensorWidth} - 1));
}

uint32_t Scene::SeenY(int64_t y) const
{
    return static_cast<uint32_t>(std::clamp<int64_t>(SensorY(y), 0, int64_t{settings_.sensorHeight} - 1));
}

/// Where an image of that size shows a place of the sensor.
static std::optional<uint32_t> PlaceInImage(uint32_t place, uint32_t sensor, uint32_t size, bool isCentred)
{
    if (!isCentred) {
        return place % size;
    }
    const int64_t at = int64_t{place} - (int64_t{sensor} - size) / 2;
    return at < 0 || at >= size ? std::nullopt : std::optional(static_cast<uint32_t>(at));
}

std::optional<uint32_t> Scene::ImageColumn(int64_t x) const
{
    return PlaceInImage(SeenX(x), settings_.sensorWidth, settings_.image->width, settings_.isImageCentred);
}

std::optional<uint32_t> Scene::ImageLine(int64_t y) const
{
    return PlaceInImage(SeenY(y), settings_.sensorHeight, settings_.image->height, settings_.isImageCentred);
}

/// An image in front of the sensor, or colours that change over it, under a chessboard.
Signal Scene::Light(int64_t x, int64_t y) const
{
    if (Image() != nullptr) {
        const auto column = ImageColumn(x), line = ImageLine(y);
        return column && line ? Image()->At(*column, *line) : Grey(0);
    }
    const uint32_t sensorX = SeenX(x), sensorY = SeenY(y);
    // Steps of sixteen: pictures of up to twelve bits show the scene as it is.
    const auto right = static_cast<int32_t>(1600 * sensorX / settings_.sensorWidth * 16);
    const auto down = static_cast<int32_t>(1600 * sensorY / settings_.sensorHeight * 16);
    const int32_t floor = (sensorX / 64 + sensorY / 64) % 2 != 0 ? 4000 : 6400;
    return {floor + right, floor + down, floor + 25600 - right};
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

Signal Scene::Background(uint32_t x, uint32_t y) const
{
    switch (settings_.testPattern) {
    case 1:
        return Grey(0);
    case 2:
        return Grey(s_white);
    case 3:
        return Grey(0xAAAA);
    case 4:
        return Grey(0x5555);
    case 5:
        return Grey(static_cast<int32_t>(x << 8) & s_white);
    case 6:
        return Grey(static_cast<int32_t>(x * 16 / settings_.width * 0x1111));
    case 7:
        return ColourBar(x * 8 / settings_.width);
    case 8:
        return Grey(static_cast<int32_t>(y << 8) & s_white);
    default:
        return develop_(SharpLight(x, y));
    }
}

Signal Scene::SubjectSignal() const
{
    // A test pattern is put in behind the sensor, where exposure and gain have no say any more.
    return settings_.testPattern != 0 ? s_subjectLight : develop_(s_subjectLight);
}

Subject Scene::SubjectOf(uint64_t block) const
{
    const uint32_t width = settings_.sensorWidth;
    const uint32_t height = settings_.sensorHeight;
    const uint32_t radius = std::max(2u, std::min(width, height) / 24);
    const uint64_t stepX = std::max(1u, width / 120);
    const uint64_t stepY = std::max(1u, height / 170);
    const uint64_t way = block + settings_.subjectStart;
    return {Swing(way * stepX, int64_t{width} - 2 * radius) + radius,
            Swing(way * stepY, int64_t{height} - 2 * radius) + radius, radius};
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
    if (!settings_.showsSubject) {
        return {0, -1};
    }
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
    if (!settings_.showsSubject) {
        return false;
    }
    const int64_t right = SensorX(x) - subject.x;
    const int64_t down = SensorY(y) - subject.y;
    return right * right + down * down <= subject.radius * subject.radius;
}

void RenderReference(const PictureSettings &settings, uint64_t block, std::span<std::byte> image)
{
    const Scene scene(settings);
    const BlockIdMark mark(settings, block);
    const Subject subject = scene.SubjectOf(block);
    const Signal subjectSignal = scene.SubjectSignal();
    std::vector<Signal> line(settings.width);
    std::byte *to = image.data();
    for (uint32_t y = 0; y < settings.height; ++y) {
        for (uint32_t x = 0; x < settings.width; ++x) {
            line[x] = scene.ShowsSubject(subject, x, y) ? subjectSignal : scene.Background(x, y);
        }
        for (const Blemish &blemish : scene.Blemishes()) {
            if (blemish.y == y) {
                line[blemish.x] = scene.BlemishSignal(blemish, subject);
            }
        }
        for (uint32_t x = 0; x < settings.width; ++x) {
            if (const std::optional<bool> part = mark.At(x, y)) {
                line[x] = Grey(*part ? s_white : 0);
            }
        }
        to = EncodePixels(settings.Format(), line, 0, y, to);
    }
}

} // namespace Orvi::Vcam
