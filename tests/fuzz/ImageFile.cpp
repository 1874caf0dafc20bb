// An image for a virtual camera: the file as it is, or behind the byte 'r' raw pixels with their size and format. TIFF
// is left out: libtiff reads it, which is not built with the fuzzers.

#include "vcam/PixelFormats.h"
#include "vcam/image/ImageReader.h"

#include "tests/fuzz/Bytes.h"

namespace Orvi::Fuzz {

using namespace Vcam;

namespace {

SceneImage DecodeRawImage(Bytes bytes)
{
    const std::uint32_t width = bytes.Number<std::uint8_t>() + 1u, height = bytes.Number<std::uint8_t>() + 1u;
    const auto code = bytes.Number<std::uint32_t>();
    const PixelFormat *format = FindPixelFormat(code);
    if (format == nullptr || format->colours == Colours::Yuv411 || format->colours == Colours::Yuv422)
        throw ImageError("has a format that is not asked for");
    return DecodeRaw(bytes.TakeAll(), width, height, code);
}

} // namespace

void ImageFile(Input input)
{
    const std::string_view start = TextOf(input.first(std::min<std::size_t>(input.size(), 2)));
    if (start == "II" || start == "MM")
        return;
    try {
        const SceneImage image = start.starts_with('r') ? DecodeRawImage(Bytes(input.subspan(1))) : DecodeImage(input);
        Require(image.channels == 1 || image.channels == 3, "an image is grey or in colour");
        Require(image.samples.size() == std::size_t{image.width} * image.height * image.channels,
                "an image has all its samples");
    } catch (const ImageError &error) {
        Require(*error.what() != '\0', "an error has a text");
    }
}

} // namespace Orvi::Fuzz
