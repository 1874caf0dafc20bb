#include "HostSide.h"
#include "vcam/Packing.h"
#include "vcam/Painter.h"

#include <numeric>

namespace Orvi::Vcam::Test {
namespace {

PictureSettings Settings(std::uint32_t pixelFormat = 0x01080001)
{
    return {.sensorWidth = 640, .sensorHeight = 480, .width = 640, .height = 480, .pixelFormat = pixelFormat};
}

std::vector<std::byte> Render(const PictureSettings &settings, std::uint64_t block)
{
    std::vector<std::byte> image(settings.ImageBytes());
    RenderReference(settings, block, image);
    return image;
}

/// The value of a one-channel pixel.
std::uint32_t Pixel(const PictureSettings &settings, const std::vector<std::byte> &image, std::uint32_t x,
                    std::uint32_t y)
{
    const std::size_t at = y * settings.LineBytes() + std::size_t{x} * settings.Format().bytesPerPixel;
    return settings.Format().bytesPerPixel == 1 ? std::to_integer<std::uint32_t>(image[at])
                                                : LoadLe<std::uint16_t>(image.data() + at);
}

double Mean(const std::vector<std::byte> &image)
{
    return std::accumulate(image.begin(), image.end(), 0.0,
                           [](double sum, std::byte byte) { return sum + std::to_integer<int>(byte); }) /
           static_cast<double>(image.size());
}

/// Reads the block id out of line 0 as any program would.
std::uint64_t ReadBlockId(const PictureSettings &settings, const std::vector<std::byte> &image)
{
    std::uint64_t id = 0;
    for (std::uint32_t x = 0; x < std::min(settings.width, 64u); ++x) {
        // The last byte of a pixel is its brightness in YUV formats, and white or black in all others.
        const std::size_t at = settings.Format().BytesBefore(x + 1) - 1;
        id = id << 1 | (image[at] != std::byte{0} ? 1 : 0);
    }
    return id;
}

TEST(Packing, SamplesLieWithoutGaps)
{
    struct Row {
        const char *name;
        std::vector<std::uint16_t> samples;
        std::vector<unsigned> bytes;
    };
    const Row rows[] = {
        {"Mono12p", {0x321, 0x654}, {0x21, 0x43, 0x65}},
        {"Mono12p", {0x321, 0x654, 0xFED}, {0x21, 0x43, 0x65, 0xED, 0x0F}},
        {"BayerGR10p", {0x3FF, 0x100, 0x155, 0x2AA}, {0xFF, 0x03, 0x54, 0x95, 0xAA}},
        {"BayerGB12Packed", {0xABC, 0xDEF}, {0xAB, 0xFC, 0xDE}},
        {"Mono10Packed", {0x3FF, 0x155, 0x001}, {0xFF, 0x13, 0x55, 0x00, 0x01}},
    };
    for (const Row &row : rows) {
        const auto format = FindPackedFormat(row.name, std::nullopt);
        ASSERT_TRUE(format) << row.name;
        std::vector<std::byte> packed(PackedBytes(*format->unpacked, format->packing, row.samples.size()));
        Pack(*format->unpacked, format->packing, std::as_bytes(std::span(row.samples)), packed);
        std::vector<unsigned> bytes;
        std::ranges::transform(packed, std::back_inserter(bytes), std::to_integer<unsigned>);
        EXPECT_EQ(bytes, row.bytes) << row.name;
        EXPECT_EQ(PackedCode(*format->unpacked, format->packing), format->code);
        EXPECT_EQ(FindPackedFormat("other", format->code)->unpacked, format->unpacked);
    }
}

TEST(Picture, BlockIdIsReadableInEveryFormat)
{
    for (const PixelFormat &format : s_pixelFormats) {
        PictureSettings settings = Settings(format.code);
        settings.height = 40;
        for (const std::uint64_t block : {0ull, 1ull, 12345ull, 0x8000000000000001ull, ~0ull}) {
            EXPECT_EQ(ReadBlockId(settings, Render(settings, block)), block) << std::hex << format.code;
        }
    }
}

TEST(Picture, NarrowImageCarriesTheLowBits)
{
    PictureSettings settings = Settings();
    settings.width = 16;
    settings.height = 2;
    EXPECT_EQ(ReadBlockId(settings, Render(settings, 0xABCD1234)), 0x1234u);
}

TEST(Picture, WhiteIsAllOnesInEveryDepth)
{
    for (const auto &[code, white] : std::initializer_list<std::pair<std::uint32_t, std::uint32_t>>{
             {0x01080001, 0xFF}, {0x01100003, 0x3FF}, {0x01100005, 0xFFF}, {0x01100007, 0xFFFF}}) {
        PictureSettings settings = Settings(code);
        settings.testPattern = 2;
        EXPECT_EQ(Pixel(settings, Render(settings, 0), 600, 400), white);
    }
}

TEST(Picture, PainterDrawsTheReferenceInEveryFormatAndPattern)
{
    Painter painter; // one for all: what it kept of earlier settings must not show
    for (const PixelFormat &format : s_pixelFormats) {
        for (std::uint32_t pattern = 0; pattern < 9; ++pattern) {
            PictureSettings settings = Settings(format.code);
            settings.testPattern = pattern;
            settings.width = 200;
            settings.height = 122;
            settings.offsetX = 4 * pattern;
            settings.offsetY = 2 * pattern;
            for (const std::uint64_t block : {0ull, 1ull, 9ull, 10ull, 57ull, 99999ull, ~0ull, 3ull}) {
                const auto drawn = painter.Draw(settings, block);
                ASSERT_TRUE(std::ranges::equal(drawn, Render(settings, block)))
                    << std::hex << format.code << " pattern " << pattern << " block " << block;
            }
        }
    }
}

TEST(Picture, PainterDrawsTheReferenceInSmallImages)
{
    Painter painter;
    for (const std::uint32_t width : {16u, 20u, 64u, 100u}) {
        for (const std::uint32_t height : {2u, 4u, 10u, 30u}) {
            PictureSettings settings = Settings(0x02180014);
            settings.width = width;
            settings.height = height;
            for (std::uint64_t block = 0; block < 200; block += 7) {
                ASSERT_TRUE(std::ranges::equal(painter.Draw(settings, block), Render(settings, block)));
            }
        }
    }
}

TEST(Picture, PainterDrawsTheReferenceBinnedDecimatedAndMirrored)
{
    Painter painter;
    for (const std::uint32_t step : {1u, 2u, 3u, 4u}) {
        for (const bool isReverse : {false, true}) {
            PictureSettings settings = Settings(0x01080009);
            settings.sensorWidth = 240;
            settings.sensorHeight = 160;
            settings.binningX = settings.decimationY = step;
            settings.reverseX = settings.reverseY = isReverse;
            settings.width = 240 / step / 4 * 4 - 8;
            settings.height = 160 / step / 4 * 4 - 8;
            settings.offsetX = 4;
            settings.offsetY = 2;
            settings.sharpness = step;
            for (std::uint64_t block = 0; block < 300; block += 17) {
                ASSERT_TRUE(std::ranges::equal(painter.Draw(settings, block), Render(settings, block)))
                    << step << isReverse << ' ' << block;
            }
        }
    }
}

TEST(Picture, SubjectMovesAndIsBright)
{
    const PictureSettings settings = Settings();
    const Scene scene(settings);
    const Subject first = scene.SubjectOf(10), second = scene.SubjectOf(11);
    EXPECT_NE(first.x, second.x);
    EXPECT_NE(first.y, second.y);
    const auto image = Render(settings, 10);
    EXPECT_GT(Pixel(settings, image, static_cast<std::uint32_t>(first.x), static_cast<std::uint32_t>(first.y)), 200u);
    for (std::uint64_t block = 0; block < 1000; ++block) {
        const Subject subject = scene.SubjectOf(block);
        EXPECT_GE(subject.x, subject.radius);
        EXPECT_LE(subject.x + subject.radius, 640);
        EXPECT_LE(subject.y + subject.radius, 480);
    }
}

TEST(Picture, TwiceTheExposureIsTwiceAsBright)
{
    PictureSettings settings = Settings(0x01100005);
    const auto single = Render(settings, 0);
    settings.exposure = 20000;
    const auto twice = Render(settings, 0);
    EXPECT_EQ(Pixel(settings, twice, 300, 300), 2 * Pixel(settings, single, 300, 300));
    settings.exposure = 10000;
    settings.gain = 602; // 6.02 dB: a factor of 2
    const auto amplified = Render(settings, 0);
    EXPECT_NEAR(Pixel(settings, amplified, 300, 300), 2 * Pixel(settings, single, 300, 300), 2);
}

TEST(Picture, BrightnessClipsAtWhite)
{
    PictureSettings settings = Settings();
    settings.exposure = 16000000;
    settings.gain = 2400;
    EXPECT_EQ(Pixel(settings, Render(settings, 0), 300, 300), 255u);
}

TEST(Picture, BlackLevelIsAddedToTheSignal)
{
    PictureSettings settings = Settings();
    settings.exposure = 20;
    const double dark = Mean(Render(settings, 0));
    settings.blackLevel = 16 * 16;
    EXPECT_NEAR(Mean(Render(settings, 0)), dark + 16, 0.5);
}

TEST(Picture, OffsetMovesTheWindowOverTheScene)
{
    PictureSettings settings = Settings();
    const auto whole = Render(settings, 5);
    PictureSettings window = settings;
    window.width = 200;
    window.height = 200;
    window.offsetX = 300;
    window.offsetY = 200;
    const auto part = Render(window, 5);
    for (std::uint32_t y = 100; y < 200; ++y) {
        for (std::uint32_t x = 100; x < 200; ++x) {
            ASSERT_EQ(Pixel(window, part, x, y), Pixel(settings, whole, x + 300, y + 200));
        }
    }
}

TEST(Picture, BayerPatternPutsTheColoursWhereItsNameSays)
{
    // The green bar of the colour bars: only green pixels are lit.
    for (const auto &[code, first] : std::initializer_list<std::pair<std::uint32_t, bool>>{
             {0x01080009, false}, {0x01080008, true}, {0x0108000A, true}, {0x0108000B, false}}) {
        PictureSettings settings = Settings(code);
        settings.testPattern = 7;
        const auto image = Render(settings, 0);
        const std::uint32_t x = 640 / 8 * 3 + 10;
        EXPECT_EQ(Pixel(settings, image, x, 400), first ? 255u : 0u) << std::hex << code;
        EXPECT_EQ(Pixel(settings, image, x + 1, 400), first ? 0u : 255u) << std::hex << code;
        // The red bar: red lies in the even lines of RG and GR, in the odd ones of GB and BG.
        const std::uint32_t red = 640 / 8 * 5 + 10;
        const bool isEven = code == 0x01080009 || code == 0x01080008;
        EXPECT_EQ(Pixel(settings, image, red, 400) + Pixel(settings, image, red + 1, 400), isEven ? 255u : 0u);
        EXPECT_EQ(Pixel(settings, image, red, 401) + Pixel(settings, image, red + 1, 401), isEven ? 0u : 255u);
    }
}

TEST(Picture, RgbAndBgrDifferInOrderAlone)
{
    PictureSettings settings = Settings(0x02180014);
    const auto rgb = Render(settings, 3);
    settings.pixelFormat = 0x02180015;
    const auto bgr = Render(settings, 3);
    for (std::size_t at = 0; at < rgb.size(); at += 3) {
        ASSERT_EQ(rgb[at], bgr[at + 2]);
        ASSERT_EQ(rgb[at + 1], bgr[at + 1]);
        ASSERT_EQ(rgb[at + 2], bgr[at]);
    }
}

TEST(Picture, RampCountsUpPixelByPixel)
{
    PictureSettings settings = Settings();
    settings.testPattern = 5;
    settings.exposure = 40; // a test pattern does not know exposure
    const auto image = Render(settings, 0);
    for (std::uint32_t x = 0; x < 640; ++x) {
        ASSERT_EQ(Pixel(settings, image, x, 470), x % 256);
    }
}

TEST(Picture, EveryFormatIsDeliveredBitExact)
{
    const auto camera = MakeCamera(128, 96);
    Control control(*camera);
    control.Write(Reg::Unthrottled, 1);
    for (const PixelFormat &format : s_pixelFormats) {
        control.Write(Reg::PixelFormat, format.code);
        PictureSettings settings{.sensorWidth = 128, .sensorHeight = 96, .width = 128, .height = 96};
        settings.pixelFormat = format.code;
        const Frame frame = Stream::One(*camera, control);
        EXPECT_EQ(frame.pixelFormat, format.code);
        EXPECT_EQ(frame.image, Render(settings, 0)) << std::hex << format.code;
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
