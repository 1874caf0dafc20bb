#include "vcam/image/ImageReader.h"

#include "vcam/PixelFormats.h"
#include "vcam/Wire.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace Orvi::Vcam {

namespace {

bool BeginsWith(std::span<const std::byte> bytes, std::string_view start)
{
    return bytes.size() >= start.size() && std::memcmp(bytes.data(), start.data(), start.size()) == 0;
}

using Decoder = SceneImage (*)(std::span<const std::byte>);

Decoder DecoderOf(std::span<const std::byte> bytes)
{
    using namespace std::string_view_literals;
    if (BeginsWith(bytes, "\x89PNG")) {
        return DecodePng;
    }
    if (BeginsWith(bytes, "II*\0"sv) || BeginsWith(bytes, "MM\0*"sv)) {
        return DecodeTiff;
    }
    const bool isPnm =
        BeginsWith(bytes, "P2") || BeginsWith(bytes, "P3") || BeginsWith(bytes, "P5") || BeginsWith(bytes, "P6");
    return isPnm ? DecodePnm : nullptr;
}

} // namespace

void CheckImageSize(std::uint64_t width, std::uint64_t height)
{
    if (width == 0 || height == 0 || width > s_largestSide || height > s_largestSide || width * height > s_mostPixels) {
        throw ImageError("has a size of " + std::to_string(width) + " x " + std::to_string(height) + "; up to " +
                         std::to_string(s_largestSide) + " pixels a side and " + std::to_string(s_mostPixels) +
                         " in all can be used");
    }
}

bool LooksLikeImage(std::span<const std::byte> bytes) { return DecoderOf(bytes) != nullptr; }

SceneImage DecodeImage(std::span<const std::byte> bytes)
{
    const Decoder decode = DecoderOf(bytes);
    if (decode == nullptr) {
        throw ImageError("is neither PNG nor TIFF nor PNM");
    }
    return decode(bytes);
}

std::size_t RawImageBytes(std::uint32_t width, std::uint32_t height, std::uint32_t pixelFormat)
{
    return std::size_t{width} * height * FindPixelFormat(pixelFormat)->bytesPerPixel;
}

SceneImage DecodeRaw(std::span<const std::byte> bytes, std::uint32_t width, std::uint32_t height,
                     std::uint32_t pixelFormat)
{
    if (bytes.size() < RawImageBytes(width, height, pixelFormat)) {
        throw ImageError("ends too early");
    }
    const PixelFormat &format = *FindPixelFormat(pixelFormat);
    SceneImage image{width, height, format.HasAllColours() ? 3u : 1u, {}};
    image.samples.resize(std::size_t{width} * height * image.channels);
    const std::uint32_t maximum = (1u << format.bits) - 1;
    const bool isWide = format.bits > 8;
    for (std::size_t i = 0; i < image.samples.size(); ++i) {
        const std::uint32_t sample =
            isWide ? LoadLe<std::uint16_t>(bytes.data() + 2 * i) : std::to_integer<std::uint32_t>(bytes[i]);
        // Bits above the format's own are not the sample's.
        image.samples[i] = ToLight(sample & maximum, maximum);
    }
    if (format.colours == Colours::Bgr) {
        for (std::size_t i = 0; i < image.samples.size(); i += 3) {
            std::swap(image.samples[i], image.samples[i + 2]);
        }
    }
    return image;
}

std::vector<std::byte> ReadBytes(const std::string &path)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : -1;
    if (size < 0) {
        throw ImageError(std::string("cannot be read: ") + std::strerror(errno));
    }
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    file.seekg(0);
    if (!file.read(reinterpret_cast<char *>(bytes.data()), size)) {
        throw ImageError("cannot be read to its end");
    }
    return bytes;
}

} // namespace Orvi::Vcam
