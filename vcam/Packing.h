#pragma once
// Packed pixel formats: samples of 10 or 12 bits without gaps. Pictures are drawn unpacked, and packed on their way
// out.

#include "vcam/PixelFormats.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

enum class Packing : std::uint8_t {
    None,
    Continuous, ///< "p": each sample's low bits first, one after the other
    InThrees,   ///< "Packed": two samples in three bytes, their low bits together in the one between
};

struct PackedFormat {
    std::uint32_t code; ///< PFNC
    const PixelFormat *unpacked;
    Packing packing;
};

/// By its name, or else by its code.
std::optional<PackedFormat> FindPackedFormat(std::string_view name, std::optional<std::uint32_t> code);
/// The PFNC code of a format with that packing; the format's own when it has none.
std::uint32_t PackedCode(const PixelFormat &unpacked, Packing packing);

std::size_t PackedBytes(const PixelFormat &unpacked, Packing packing, std::size_t pixels);
/// Packs 16-bit samples, little endian, of a format; `to` has PackedBytes().
void Pack(const PixelFormat &unpacked, Packing packing, std::span<const std::byte> samples, std::span<std::byte> to);

} // namespace Orvi::Vcam
