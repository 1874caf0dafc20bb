#pragma once
// Image files of known samples, written by the formats' own libraries.

#include <cstdint>
#include <string>
#include <vector>

namespace Orvi::Vcam::Test {

/// Samples of 8 or 16 bits, line by line; 1 or 3 channels.
struct Samples {
    std::uint32_t width, height, channels, bits;
    std::vector<std::uint16_t> values;
};

/// Samples that all differ from their neighbours; `start` makes another image.
Samples MakeSamples(std::uint32_t width, std::uint32_t height, std::uint32_t channels, std::uint32_t bits,
                    std::uint32_t start = 0);

enum class Interlace : std::uint8_t { No, Yes };
void WritePng(const std::string &path, const Samples &samples, Interlace interlace = Interlace::No);
/// A PNG of grey levels by way of a palette.
void WritePalettePng(const std::string &path, const Samples &samples);

enum class TiffLayout : std::uint8_t { Strips, Tiles, Planes, Compressed };
void WriteTiff(const std::string &path, const Samples &samples, TiffLayout layout = TiffLayout::Strips);

std::string BinaryPnm(const Samples &samples);
std::string TextPnm(const Samples &samples);

} // namespace Orvi::Vcam::Test
