#include "ImageWriters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <png.h>
#include <tiffio.h>

namespace Orvi::Vcam::Test {
namespace {

constexpr std::uint32_t s_tile = 16;

/// The samples in this machine's byte order.
std::vector<std::uint8_t> Packed(const Samples &samples)
{
    std::vector<std::uint8_t> bytes;
    for (const std::uint16_t value : samples.values) {
        if (samples.bits == 16) {
            bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
            bytes.push_back(static_cast<std::uint8_t>(value >> 8));
        } else {
            bytes.push_back(static_cast<std::uint8_t>(value));
        }
    }
    return bytes;
}

std::string PnmHead(const Samples &samples, const char *kind)
{
    return std::string(kind) + "\n# a comment\n" + std::to_string(samples.width) + ' ' +
           std::to_string(samples.height) + "\n" + std::to_string((1u << samples.bits) - 1) + "\n";
}

class PngFile {
  public:
    explicit PngFile(const std::string &path) : file_(std::fopen(path.c_str(), "wb"))
    {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        info = png_create_info_struct(png);
        png_init_io(png, file_);
    }
    ~PngFile()
    {
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        std::fclose(file_);
    }
    PngFile(const PngFile &) = delete;
    PngFile &operator=(const PngFile &) = delete;

    png_structp png;
    png_infop info;

  private:
    std::FILE *file_;
};

} // namespace

Samples MakeSamples(std::uint32_t width, std::uint32_t height, std::uint32_t channels, std::uint32_t bits,
                    std::uint32_t start)
{
    Samples samples{width, height, channels, bits, {}};
    for (std::uint32_t i = 0; i < width * height * channels; ++i) {
        const std::uint32_t mixed = (i + start * 7919) * 2654435761u;
        samples.values.push_back(static_cast<std::uint16_t>(mixed >> (32 - bits)));
    }
    return samples;
}

void WritePng(const std::string &path, const Samples &samples, Interlace interlace)
{
    const PngFile file(path);
    png_set_IHDR(file.png, file.info, samples.width, samples.height, static_cast<int>(samples.bits),
                 samples.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                 interlace == Interlace::Yes ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(file.png, file.info);
    if (samples.bits == 16) {
        png_set_swap(file.png);
    }
    std::vector<std::uint8_t> bytes = Packed(samples);
    std::vector<png_bytep> lines;
    for (std::uint32_t y = 0; y < samples.height; ++y) {
        lines.push_back(bytes.data() + std::size_t{y} * (bytes.size() / samples.height));
    }
    png_write_image(file.png, lines.data());
}

void WritePalettePng(const std::string &path, const Samples &samples)
{
    const PngFile file(path);
    png_set_IHDR(file.png, file.info, samples.width, samples.height, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> palette(256);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto level = static_cast<png_byte>(255 - i);
        palette[i] = {level, level, level};
    }
    png_set_PLTE(file.png, file.info, palette.data(), 256);
    png_write_info(file.png, file.info);
    for (std::uint32_t y = 0; y < samples.height; ++y) {
        std::vector<png_byte> line;
        for (std::uint32_t x = 0; x < samples.width; ++x) {
            line.push_back(static_cast<png_byte>(255 - samples.values[std::size_t{y} * samples.width + x]));
        }
        png_write_row(file.png, line.data());
    }
}

void WriteTiff(const std::string &path, const Samples &samples, TiffLayout layout)
{
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> file(TIFFOpen(path.c_str(), "w"), TIFFClose);
    TIFF *tiff = file.get();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, samples.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, samples.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, samples.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples.channels);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples.channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    const bool isPlanar = layout == TiffLayout::Planes;
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    const bool isPlain = layout == TiffLayout::Strips || isPlanar;
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, isPlain ? COMPRESSION_NONE : COMPRESSION_LZW);
    std::vector<std::uint8_t> bytes = Packed(samples);
    const std::size_t pixel = std::size_t{samples.channels} * samples.bits / 8, line = pixel * samples.width;
    if (layout == TiffLayout::Tiles) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, s_tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, s_tile);
        for (std::uint32_t top = 0; top < samples.height; top += s_tile) {
            for (std::uint32_t left = 0; left < samples.width; left += s_tile) {
                std::vector<std::uint8_t> tile(s_tile * s_tile * pixel);
                for (std::uint32_t y = 0; y < std::min(s_tile, samples.height - top); ++y) {
                    std::memcpy(&tile[y * s_tile * pixel], &bytes[(top + y) * line + left * pixel],
                                std::min(s_tile, samples.width - left) * pixel);
                }
                TIFFWriteTile(tiff, tile.data(), left, top, 0, 0);
            }
        }
        return;
    }
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 4u);
    for (std::uint16_t plane = 0; plane < (isPlanar ? samples.channels : 1); ++plane) {
        for (std::uint32_t y = 0; y < samples.height; ++y) {
            std::vector<std::uint8_t> row(&bytes[y * line], &bytes[y * line] + line);
            if (isPlanar) {
                for (std::size_t x = 0; x < samples.width; ++x) {
                    row[x] = row[x * samples.channels + plane];
                }
            }
            TIFFWriteScanline(tiff, row.data(), y, plane);
        }
    }
}

std::string BinaryPnm(const Samples &samples)
{
    std::string text = PnmHead(samples, samples.channels == 1 ? "P5" : "P6");
    for (const std::uint16_t value : samples.values) {
        if (samples.bits > 8) {
            text += static_cast<char>(value >> 8);
        }
        text += static_cast<char>(value & 0xFF);
    }
    return text;
}

std::string TextPnm(const Samples &samples)
{
    std::string text = PnmHead(samples, samples.channels == 1 ? "P2" : "P3");
    for (const std::uint16_t value : samples.values) {
        text += std::to_string(value) + ' ';
    }
    return text;
}

} // namespace Orvi::Vcam::Test
