#pragma once
// The pixel formats of the camera: PFNC codes with their pair of control registers.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvi::Vcam {

enum class Colours : std::uint8_t { Mono, Bayer, Rgb, Bgr, Yuv411, Yuv422 };

struct PixelFormat {
    std::uint32_t code;   ///< PFNC
    std::uint32_t coding; ///< value of the pixel coding block
    std::uint32_t size;   ///< value of the pixel size block: bits of a pixel, padding not counted
    Colours colours;
    std::uint8_t bits;          ///< of one channel
    std::uint8_t bytesPerPixel; ///< all formats are unpacked; of YUV 4:1:1, every other pixel has one more
    std::uint8_t redX, redY;    ///< parity of the column and line of red in a Bayer pattern
    const char *name;

    /// Bytes of a line before column x.
    constexpr std::size_t BytesBefore(std::uint32_t x) const
    {
        return std::size_t{x} * bytesPerPixel + (colours == Colours::Yuv411 ? (x + 1) / 2 : 0);
    }
    constexpr bool HasAllColours() const { return colours != Colours::Mono && colours != Colours::Bayer; }
};

// clang-format off
inline constexpr PixelFormat s_pixelFormats[] = {
    // code      coding  size  colours        bits bytes red   name
    {0x01080001, 0x00,   8,    Colours::Mono,   8,  1,   0, 0, "Mono8"},
    {0x01100003, 0x00,  10,    Colours::Mono,  10,  2,   0, 0, "Mono10"},
    {0x01100005, 0x00,  12,    Colours::Mono,  12,  2,   0, 0, "Mono12"},
    {0x01100007, 0x00,  16,    Colours::Mono,  16,  2,   0, 0, "Mono16"},
    {0x01080008, 0x60,   8,    Colours::Bayer,  8,  1,   1, 0, "BayerGR8"},
    {0x0110000C, 0x60,  10,    Colours::Bayer, 10,  2,   1, 0, "BayerGR10"},
    {0x01100010, 0x60,  12,    Colours::Bayer, 12,  2,   1, 0, "BayerGR12"},
    {0x01080009, 0x63,   8,    Colours::Bayer,  8,  1,   0, 0, "BayerRG8"},
    {0x0110000D, 0x63,  10,    Colours::Bayer, 10,  2,   0, 0, "BayerRG10"},
    {0x01100011, 0x63,  12,    Colours::Bayer, 12,  2,   0, 0, "BayerRG12"},
    {0x0108000A, 0x66,   8,    Colours::Bayer,  8,  1,   0, 1, "BayerGB8"},
    {0x0110000E, 0x66,  10,    Colours::Bayer, 10,  2,   0, 1, "BayerGB10"},
    {0x01100012, 0x66,  12,    Colours::Bayer, 12,  2,   0, 1, "BayerGB12"},
    {0x0108000B, 0x69,   8,    Colours::Bayer,  8,  1,   1, 1, "BayerBG8"},
    {0x0110000F, 0x69,  10,    Colours::Bayer, 10,  2,   1, 1, "BayerBG10"},
    {0x01100013, 0x69,  12,    Colours::Bayer, 12,  2,   1, 1, "BayerBG12"},
    {0x02180014, 0x20,  24,    Colours::Rgb,    8,  3,   0, 0, "RGB8"},
    {0x02180014, 0x22,  24,    Colours::Rgb,    8,  3,   0, 0, "RGB8"}, // by its other coding; the first row is the one that a camera shows
    {0x02180015, 0x2A,  24,    Colours::Bgr,    8,  3,   0, 0, "BGR8"},
    {0x020C001E, 0x42,  12,    Colours::Yuv411, 8,  1,   0, 0, "YUV411_8_UYYVYY"},
    {0x0210001F, 0x4A,  16,    Colours::Yuv422, 8,  2,   0, 0, "YUV422_8_UYVY"},
};
// clang-format on

constexpr const PixelFormat *FindPixelFormat(std::uint32_t code)
{
    for (const PixelFormat &format : s_pixelFormats) {
        if (format.code == code) {
            return &format;
        }
    }
    return nullptr;
}

constexpr const PixelFormat *FindPixelFormat(std::string_view name)
{
    for (const PixelFormat &format : s_pixelFormats) {
        if (format.name == name) {
            return &format;
        }
    }
    return nullptr;
}

constexpr const PixelFormat *FindPixelFormat(std::uint32_t coding, std::uint32_t size)
{
    for (const PixelFormat &format : s_pixelFormats) {
        if (format.coding == coding && format.size == size) {
            return &format;
        }
    }
    return nullptr;
}

} // namespace Orvi::Vcam
