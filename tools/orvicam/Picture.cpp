#include "Picture.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Orvi::Tool {
namespace {

// clang-format off
constexpr PixelFormat s_formats[] = {
    // grey
    {0x01080001, "Mono8",  1, 8},
    {0x01100003, "Mono10", 1, 10},
    {0x01100005, "Mono12", 1, 12},
    {0x01100025, "Mono14", 1, 14},
    {0x01100007, "Mono16", 1, 16},
    {0x010A0046, "Mono10p", 1, 10},
    {0x010C0047, "Mono12p", 1, 12},
    // Bayer
    {0x01080008, "BayerGR8", 1, 8},
    {0x01080009, "BayerRG8", 1, 8},
    {0x0108000A, "BayerGB8", 1, 8},
    {0x0108000B, "BayerBG8", 1, 8},
    {0x0110000C, "BayerGR10", 1, 10},
    {0x0110000D, "BayerRG10", 1, 10},
    {0x0110000E, "BayerGB10", 1, 10},
    {0x0110000F, "BayerBG10", 1, 10},
    {0x01100010, "BayerGR12", 1, 12},
    {0x01100011, "BayerRG12", 1, 12},
    {0x01100012, "BayerGB12", 1, 12},
    {0x01100013, "BayerBG12", 1, 12},
    {0x0110002E, "BayerGR16", 1, 16},
    {0x0110002F, "BayerRG16", 1, 16},
    {0x01100030, "BayerGB16", 1, 16},
    {0x01100031, "BayerBG16", 1, 16},
    // colour
    {0x02180014, "RGB8",  3, 8},
    {0x02180015, "BGR8",  3, 8, true},
    {0x02300018, "RGB10", 3, 10},
    {0x02300019, "BGR10", 3, 10, true},
    {0x0230001A, "RGB12", 3, 12},
    {0x0230001B, "BGR12", 3, 12, true},
    {0x02300033, "RGB16", 3, 16},
    {0x0230004B, "BGR16", 3, 16, true},
};
// clang-format on

} // namespace

const PixelFormat *FindPixelFormat(std::uint32_t code)
{
    const auto *row = std::find_if(std::begin(s_formats), std::end(s_formats),
                                   [code](const PixelFormat &format) { return format.code == code; });
    return row != std::end(s_formats) ? row : nullptr;
}

std::string PixelFormatName(std::uint32_t code)
{
    const PixelFormat *format = FindPixelFormat(code);
    return format != nullptr ? format->name : Hex(code, 8);
}

Picture TakeApart(const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte> data)
{
    const PixelFormat *format = FindPixelFormat(info.uiPixelFormat);
    if (format == nullptr)
        throw Failure(ExitCode::Images,
                      "pixel format " + Hex(info.uiPixelFormat, 8) + " can only be written as it is: use --format raw");

    const std::uint64_t perLine = std::uint64_t{info.uiWidth} * format->channels;
    const std::uint64_t lineBits = std::uint64_t{info.uiWidth} * BitsPerPixel(format->code) + 8ull * info.uiPaddingX;
    if (perLine == 0 || info.uiHeight == 0 || info.uiHeight > data.size() * 8 / lineBits)
        throw Failure(ExitCode::Images, "image " + std::to_string(info.ullBlockId) + " says " +
                                            std::to_string(info.uiWidth) + " x " + std::to_string(info.uiHeight) + " " +
                                            format->name + ", which does not fit its " + std::to_string(data.size()) +
                                            " bytes");

    Picture picture{info.uiWidth, info.uiHeight, format->channels, format->bits, {}};
    picture.samples.reserve(perLine * info.uiHeight);
    // Whole bytes, 16-bit words and packed samples are all little endian, lowest bit first: one way of reading them.
    const unsigned width = BitsPerPixel(format->code) / format->channels;
    const std::uint32_t greatest = (1u << format->bits) - 1;
    const auto byteAt = [&](std::uint64_t i) { return i < data.size() ? std::to_integer<std::uint32_t>(data[i]) : 0; };
    for (std::uint64_t line = 0; line < info.uiHeight; ++line)
        for (std::uint64_t i = 0, bit = line * lineBits; i < perLine; ++i, bit += width) {
            const std::uint64_t first = bit / 8;
            const std::uint32_t window = byteAt(first) | byteAt(first + 1) << 8 | byteAt(first + 2) << 16;
            picture.samples.push_back(static_cast<std::uint16_t>(window >> (bit % 8) & greatest));
        }
    if (format->blueFirst)
        for (std::size_t i = 0; i < picture.samples.size(); i += 3)
            std::swap(picture.samples[i], picture.samples[i + 2]);
    return picture;
}

} // namespace Orvi::Tool
