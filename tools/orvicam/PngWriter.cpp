#include "PngWriter.h"

#include "Failure.h"

#include <csetjmp>
#include <png.h>

namespace Orvi::Tool {
namespace {

// Cameras' noise hardly compresses; the fastest level keeps up with them.
constexpr int s_compressionLevel = 1;

std::vector<png_byte> ToBytes(const Picture &picture)
{
    std::vector<png_byte> bytes;
    bytes.reserve(picture.samples.size() * (picture.bits > 8 ? 2 : 1));
    for (const std::uint16_t sample : picture.samples) {
        const unsigned scaled = static_cast<unsigned>(sample) << ((picture.bits > 8 ? 16 : 8) - picture.bits);
        if (picture.bits > 8)
            bytes.push_back(static_cast<png_byte>(scaled >> 8));
        bytes.push_back(static_cast<png_byte>(scaled));
    }
    return bytes;
}

std::vector<png_text> ToTexts(Labels &labels)
{
    std::vector<png_text> texts;
    for (auto &[key, value] : labels) {
        png_text text{};
        text.compression = PNG_TEXT_COMPRESSION_NONE;
        text.key = key.data();
        text.text = value.data();
        text.text_length = value.size();
        texts.push_back(text);
    }
    return texts;
}

/// libpng leaves by longjmp: nothing that needs a destructor may live in here.
bool Write(png_structp png, png_infop info, std::FILE *file, const Picture &picture, const std::vector<png_text> &texts,
           const std::vector<png_byte> &bytes)
{
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    const int depth = picture.bits > 8 ? 16 : 8;
    const auto significant = static_cast<png_byte>(picture.bits);
    const png_color_8 bits{significant, significant, significant, significant, significant};
    png_init_io(png, file);
    png_set_compression_level(png, s_compressionLevel);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_IHDR(png, info, picture.width, picture.height, depth,
                 picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sBIT(png, info, &bits);
    png_set_text(png, info, texts.data(), static_cast<int>(texts.size()));
    png_write_info(png, info);
    const std::size_t lineBytes = bytes.size() / picture.height;
    for (std::size_t line = 0; line < picture.height; ++line)
        png_write_row(png, bytes.data() + line * lineBytes);
    png_write_end(png, nullptr);
    return true;
}

} // namespace

void WritePng(std::FILE *file, const Picture &picture, const Labels &labels)
{
    Labels copy = labels;
    const std::vector<png_byte> bytes = ToBytes(picture);
    const std::vector<png_text> texts = ToTexts(copy);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    const bool written = info != nullptr && Write(png, info, file, picture, texts, bytes);
    png_destroy_write_struct(&png, &info);
    if (!written)
        throw Failure(ExitCode::File, "the PNG could not be written; is the disk full?");
}

} // namespace Orvi::Tool
