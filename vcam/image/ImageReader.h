#pragma once
// Image files as scenes: PNG, TIFF and PNM, grey or in colour, of 8 or 16 bits; and pixels without a head.

#include "vcam/image/SceneImage.h"

#include <span>
#include <stdexcept>
#include <string>

namespace Orvi::Vcam {

/// Why bytes are no image: "ends too early".
class ImageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Sides of an image and its pixels at most.
constexpr std::uint32_t s_largestSide = 16384;
constexpr std::uint64_t s_mostPixels = 1u << 27;
/// Throws ImageError.
void CheckImageSize(std::uint64_t width, std::uint64_t height);

/// Whether bytes begin as an image of a kind that DecodeImage() knows; 4 are enough.
bool LooksLikeImage(std::span<const std::byte> bytes);
/// An image of any of the kinds, told by its first bytes. Throws ImageError.
SceneImage DecodeImage(std::span<const std::byte> bytes);

SceneImage DecodePng(std::span<const std::byte> bytes);
SceneImage DecodeTiff(std::span<const std::byte> bytes);
SceneImage DecodePnm(std::span<const std::byte> bytes);

/// Bytes of one raw image; the format is PFNC and not YUV.
std::size_t RawImageBytes(std::uint32_t width, std::uint32_t height, std::uint32_t pixelFormat);
/// Samples of a Bayer format are taken as grey: a camera with the same pattern shows them as they are.
SceneImage DecodeRaw(std::span<const std::byte> bytes, std::uint32_t width, std::uint32_t height,
                     std::uint32_t pixelFormat);

/// The whole file. Throws ImageError.
std::vector<std::byte> ReadBytes(const std::string &path);

} // namespace Orvi::Vcam
