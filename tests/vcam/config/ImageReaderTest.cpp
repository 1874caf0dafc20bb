#include "vcam/image/ImageReader.h"
#include "ConfigFiles.h"
#include "ImageWriters.h"
#include "vcam/PixelFormats.h"

#include <cstring>

namespace Orvi::Vcam::Test {
namespace {

void ExpectSamples(const SceneImage &image, const Samples &samples, std::uint32_t channels)
{
    ASSERT_EQ(image.width, samples.width);
    ASSERT_EQ(image.height, samples.height);
    ASSERT_EQ(image.channels, channels);
    ASSERT_EQ(image.samples.size(), std::size_t{samples.width} * samples.height * channels);
    for (std::size_t i = 0; i < image.samples.size(); ++i) {
        // A sample is the upper bits of its light.
        ASSERT_EQ(image.samples[i] >> (16 - samples.bits), samples.values[i * samples.channels / channels]) << i;
    }
}

SceneImage Decode(const std::string &bytes) { return DecodeImage(std::as_bytes(std::span(bytes))); }

std::string ProblemOf(const std::string &bytes)
{
    try {
        Decode(bytes);
    } catch (const ImageError &error) {
        return error.what();
    }
    return "";
}

class ImageReader : public FilesTest {};

TEST_F(ImageReader, PngOfEveryDepthAndColour)
{
    const std::string path = Folder() / "a.png";
    for (const std::uint32_t channels : {1u, 3u}) {
        for (const std::uint32_t bits : {8u, 16u}) {
            for (const Interlace interlace : {Interlace::No, Interlace::Yes}) {
                const Samples samples = MakeSamples(37, 21, channels, bits);
                WritePng(path, samples, interlace);
                ExpectSamples(DecodeImage(ReadBytes(path)), samples, channels);
            }
        }
    }
    const Samples samples = MakeSamples(37, 21, 1, 8);
    WritePalettePng(path, samples);
    ExpectSamples(DecodeImage(ReadBytes(path)), samples, 3);
}

TEST_F(ImageReader, TiffOfEveryDepthColourAndLayout)
{
    const std::string path = Folder() / "a.tif";
    for (const std::uint32_t channels : {1u, 3u}) {
        for (const std::uint32_t bits : {8u, 16u}) {
            for (const TiffLayout layout : {TiffLayout::Strips, TiffLayout::Compressed}) {
                const Samples samples = MakeSamples(37, 21, channels, bits);
                WriteTiff(path, samples, layout);
                ExpectSamples(DecodeImage(ReadBytes(path)), samples, channels);
            }
        }
        const Samples samples = MakeSamples(37, 21, channels, 8);
        WriteTiff(path, samples, TiffLayout::Tiles);
        ExpectSamples(DecodeImage(ReadBytes(path)), samples, channels);
    }
    const Samples samples = MakeSamples(37, 21, 3, 8);
    WriteTiff(path, samples, TiffLayout::Planes);
    ExpectSamples(DecodeImage(ReadBytes(path)), samples, 3);
}

TEST_F(ImageReader, PnmOfEveryKind)
{
    for (const std::uint32_t channels : {1u, 3u}) {
        for (const std::uint32_t bits : {8u, 10u, 12u, 16u}) {
            const Samples samples = MakeSamples(37, 21, channels, bits);
            ExpectSamples(Decode(BinaryPnm(samples)), samples, channels);
            ExpectSamples(Decode(TextPnm(samples)), samples, channels);
        }
    }
    // A largest sample of any value is white.
    EXPECT_EQ(Decode("P2 3 1 100 0 50 100").samples, (std::vector<std::uint16_t>{0, 32768, 65535}));
}

TEST(ToLight, BlackAndWhiteStayAndBitsAreKept)
{
    for (std::uint32_t bits = 1; bits <= 16; ++bits) {
        const std::uint32_t maximum = (1u << bits) - 1;
        EXPECT_EQ(ToLight(0, maximum), 0u);
        EXPECT_EQ(ToLight(maximum, maximum), s_white);
        for (std::uint32_t sample = 0; sample <= maximum; ++sample) {
            ASSERT_EQ(ToLight(sample, maximum) >> (16 - bits), sample) << bits;
        }
    }
}

TEST_F(ImageReader, WhatIsBrokenIsTold)
{
    const Samples samples = MakeSamples(8, 8, 1, 8);
    const std::string png = Folder() / "a.png", tiff = Folder() / "a.tif";
    WritePng(png, samples);
    WriteTiff(tiff, samples);
    const auto cut = [](const std::string &text, std::size_t length) { return text.substr(0, length); };
    EXPECT_EQ(ProblemOf(""), "is neither PNG nor TIFF nor PNM");
    EXPECT_EQ(ProblemOf("GIF89a"), "is neither PNG nor TIFF nor PNM");
    EXPECT_EQ(ProblemOf(cut(ReadTextOf(png), 40)), "is a broken PNG: it ends too early");
    EXPECT_EQ(ProblemOf(cut(ReadTextOf(png), 20)), "is a broken PNG: it ends too early");
    EXPECT_TRUE(ProblemOf(cut(ReadTextOf(tiff), 60)).starts_with("is a broken TIFF: "));
    EXPECT_TRUE(ProblemOf(cut(ReadTextOf(tiff), 4)).starts_with("is a broken TIFF: "));
    EXPECT_EQ(ProblemOf(cut(BinaryPnm(samples), 60)), "is a broken PNM: it ends too early");
    EXPECT_EQ(ProblemOf("P5 8"), "is a broken PNM: a number is missing");
    EXPECT_EQ(ProblemOf("P5 8 8 70000\n"), "is a broken PNM: its largest sample is 70000");
    EXPECT_EQ(ProblemOf("P5 0 8 255\n"),
              "has a size of 0 x 8; up to 16384 pixels a side and 134217728 in all can be used");
    EXPECT_EQ(ProblemOf("P5 20000 8 255\n"),
              "has a size of 20000 x 8; up to 16384 pixels a side and 134217728 in all can be used");
}

TEST_F(ImageReader, RawPixelsOfEveryFormat)
{
    for (const PixelFormat &format : s_pixelFormats) {
        if (format.colours == Colours::Yuv411 || format.colours == Colours::Yuv422) {
            continue;
        }
        const std::uint32_t channels = format.HasAllColours() ? 3 : 1;
        Samples samples = MakeSamples(12, 6, channels, format.bits);
        std::vector<std::byte> bytes;
        for (const std::uint16_t value : samples.values) {
            bytes.push_back(static_cast<std::byte>(value));
            if (format.bits > 8) {
                bytes.push_back(static_cast<std::byte>(value >> 8));
            }
        }
        ASSERT_EQ(bytes.size(), RawImageBytes(12, 6, format.code)) << format.name;
        if (format.colours == Colours::Bgr) {
            for (std::size_t i = 0; i < samples.values.size(); i += 3) {
                std::swap(samples.values[i], samples.values[i + 2]);
            }
        }
        ExpectSamples(DecodeRaw(bytes, 12, 6, format.code), samples, channels);
        bytes.pop_back();
        EXPECT_THROW(DecodeRaw(bytes, 12, 6, format.code), ImageError);
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
