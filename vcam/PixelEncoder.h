#pragma once
// Signals as bytes of an image. A pixel's bytes depend on its signal and place alone; formats that share colours
// between neighbours take each colour from the pixel that carries it.

#include "vcam/PictureSettings.h"
#include "vcam/Wire.h"

#include <algorithm>

namespace Orvi::Vcam {

template <Colours colours>
std::byte *EncodePixel(const PixelFormat &format, Signal signal, std::uint32_t x, std::uint32_t y, std::byte *to)
{
    const auto put8 = [&to](std::int32_t value) { *to++ = static_cast<std::byte>(value >> 4); };
    if constexpr (colours == Colours::Rgb || colours == Colours::Bgr) {
        put8(colours == Colours::Rgb ? signal.red : signal.blue);
        put8(signal.green);
        put8(colours == Colours::Rgb ? signal.blue : signal.red);
        return to;
    } else if constexpr (colours == Colours::Yuv411 || colours == Colours::Yuv422) {
        // Full range; grey has the colours in the middle. U and V stand before the brightness of their pixels.
        constexpr std::uint32_t step = colours == Colours::Yuv411 ? 2 : 1;
        constexpr std::int32_t middle = (s_white + 1) / 2;
        const auto colour = [](std::int32_t sum) { return std::clamp((sum >> 8) + middle, 0, s_white); };
        if (x % (2 * step) == 0) {
            put8(colour(-43 * signal.red - 85 * signal.green + 128 * signal.blue));
        } else if (x % (2 * step) == step) {
            put8(colour(128 * signal.red - 107 * signal.green - 21 * signal.blue));
        }
        put8((77 * signal.red + 150 * signal.green + 29 * signal.blue) >> 8);
        return to;
    } else {
        std::int32_t value = signal.green; // of a grey signal all three are alike
        if constexpr (colours == Colours::Bayer) {
            const bool isRedColumn = x % 2 == format.redX;
            const bool isRedLine = y % 2 == format.redY;
            value = isRedColumn && isRedLine ? signal.red : !isRedColumn && !isRedLine ? signal.blue : signal.green;
        }
        if (format.bytesPerPixel == 1) {
            put8(value);
            return to;
        }
        // More than 12 bits are filled from the top again, so that white is all ones.
        const std::int32_t scaled =
            format.bits > 12 ? value << (format.bits - 12) | value >> (24 - format.bits) : value >> (12 - format.bits);
        StoreLe(to, static_cast<std::uint16_t>(scaled));
        return to + 2;
    }
}

/// Encodes pixels of line y, from column x on; returns the bytes after them.
inline std::byte *EncodePixels(const PixelFormat &format, std::span<const Signal> signals, std::uint32_t x,
                               std::uint32_t y, std::byte *to)
{
    const auto encode = [&]<Colours colours>() {
        for (const Signal &signal : signals) {
            to = EncodePixel<colours>(format, signal, x++, y, to);
        }
        return to;
    };
    switch (format.colours) {
    case Colours::Mono:
        return encode.operator()<Colours::Mono>();
    case Colours::Bayer:
        return encode.operator()<Colours::Bayer>();
    case Colours::Rgb:
        return encode.operator()<Colours::Rgb>();
    case Colours::Bgr:
        return encode.operator()<Colours::Bgr>();
    case Colours::Yuv411:
        return encode.operator()<Colours::Yuv411>();
    case Colours::Yuv422:
        return encode.operator()<Colours::Yuv422>();
    }
    return to;
}

} // namespace Orvi::Vcam
