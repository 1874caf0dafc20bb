#pragma once
// From the bytes of a delivered image to samples that an image file can hold.

#include "OrviCamApi.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Orvi::Tool {

/// A pixel format whose pixels can be taken apart. Bayer formats count as one channel: their mosaic is kept raw.
struct PixelFormat {
    std::uint32_t code; ///< PFNC
    const char *name;
    unsigned channels;
    unsigned bits; ///< that a sample uses
    bool blueFirst = false;
};

/// Null for a format that is not in the table.
const PixelFormat *FindPixelFormat(std::uint32_t code);

/// The PFNC name, or the code in hexadecimal.
std::string PixelFormatName(std::uint32_t code);

/// Bits that a pixel takes in memory; every PFNC code says so itself.
constexpr unsigned BitsPerPixel(std::uint32_t code) { return (code >> 16) & 0xFF; }

/// Samples line by line, red first, each with the value that the camera sent.
struct Picture {
    std::uint32_t width = 0, height = 0;
    unsigned channels = 1;
    unsigned bits = 8;
    std::vector<std::uint16_t> samples;
};

/// Throws Failure(Images) for an unknown pixel format or an image with too few bytes.
Picture TakeApart(const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte> data);

} // namespace Orvi::Tool
