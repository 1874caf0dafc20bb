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
    const auto put8 = [&to](std::int32_t value) { *to++ = static_cast<std::byte>(value >> 8); };
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
        StoreLe(to, static_cast<std::uint16_t>(value >> (16 - format.bits)));
        return to + 2;
    }
}

template <Colours colours, class SignalAt>
std::byte *EncodeRun(const PixelFormat &format, std::size_t count, std::uint32_t x, std::uint32_t y, std::byte *to,
                     const SignalAt &signalAt)
{
    const PixelFormat own = format; // no pixel that is written can change it
    for (std::size_t i = 0; i < count; ++i) {
        to = EncodePixel<colours>(own, signalAt(i), x + static_cast<std::uint32_t>(i), y, to);
    }
    return to;
}

/// Encodes `count` pixels of line y, from column x on, whose signals are signalAt(0), signalAt(1) ...; returns the
/// bytes after them.
template <class SignalAt>
std::byte *EncodeEach(const PixelFormat &format, std::size_t count, std::uint32_t x, std::uint32_t y, std::byte *to,
                      const SignalAt &signalAt)
{
    switch (format.colours) {
    case Colours::Mono:
        return EncodeRun<Colours::Mono>(format, count, x, y, to, signalAt);
    case Colours::Bayer:
        return EncodeRun<Colours::Bayer>(format, count, x, y, to, signalAt);
    case Colours::Rgb:
        return EncodeRun<Colours::Rgb>(format, count, x, y, to, signalAt);
    case Colours::Bgr:
        return EncodeRun<Colours::Bgr>(format, count, x, y, to, signalAt);
    case Colours::Yuv411:
        return EncodeRun<Colours::Yuv411>(format, count, x, y, to, signalAt);
    case Colours::Yuv422:
        return EncodeRun<Colours::Yuv422>(format, count, x, y, to, signalAt);
    }
    return to;
}

/// Encodes pixels of line y, from column x on; returns the bytes after them.
inline std::byte *EncodePixels(const PixelFormat &format, std::span<const Signal> signals, std::uint32_t x,
                               std::uint32_t y, std::byte *to)
{
    return EncodeEach(format, signals.size(), x, y, to, [&signals](std::size_t i) { return signals[i]; });
}

} // namespace Orvi::Vcam
