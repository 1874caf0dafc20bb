#include "vcam/image/ImageReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <png.h>

namespace Orvi::Vcam {

namespace {

/// One decoding. libpng leaves by longjmp: nothing with a destructor lives in the functions that it leaves.
class PngDecoder {
  public:
    explicit PngDecoder(std::span<const std::byte> bytes) : rest_(bytes)
    {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    }
    ~PngDecoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngDecoder(const PngDecoder &) = delete;
    PngDecoder &operator=(const PngDecoder &) = delete;

    SceneImage Decode()
    {
        if (info_ == nullptr || !ReadHead()) {
            throw ImageError("is a broken PNG: " + std::string(message_.data()));
        }
        CheckImageSize(png_get_image_width(png_, info_), png_get_image_height(png_, info_));
        const std::size_t lineBytes = png_get_rowbytes(png_, info_);
        const std::uint32_t height = png_get_image_height(png_, info_);
        // Deflate makes no more of a byte: what claims more is refused before memory is taken for it.
        constexpr std::size_t maxRatio = 1032;
        if (lineBytes * height / maxRatio > rest_.size()) {
            throw ImageError("is a broken PNG: it ends too early");
        }
        pixels_.resize(lineBytes * height);
        for (std::uint32_t y = 0; y < height; ++y) {
            lines_.push_back(pixels_.data() + y * lineBytes);
        }
        if (!ReadLines()) {
            throw ImageError("is a broken PNG: " + std::string(message_.data()));
        }
        return Converted();
    }

  private:
    static void OnError(png_structp png, png_const_charp message)
    {
        auto &self = *static_cast<PngDecoder *>(png_get_error_ptr(png));
        std::strncpy(self.message_.data(), message, self.message_.size() - 1);
        png_longjmp(png, 1);
    }
    static void OnWarning(png_structp, png_const_charp) {}
    static void OnRead(png_structp png, png_bytep to, std::size_t size)
    {
        auto &self = *static_cast<PngDecoder *>(png_get_io_ptr(png));
        if (size > self.rest_.size()) {
            png_error(png, "it ends too early");
        }
        std::memcpy(to, self.rest_.data(), size);
        self.rest_ = self.rest_.subspan(size);
    }

    bool ReadHead()
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_set_read_fn(png_, this, OnRead);
        png_set_user_limits(png_, s_largestSide, s_largestSide);
        png_read_info(png_, info_);
        png_set_palette_to_rgb(png_);
        if (png_get_bit_depth(png_, info_) < 8) {
            png_set_expand_gray_1_2_4_to_8(png_);
        }
        png_set_strip_alpha(png_);
        png_set_swap(png_); // of 16 bits, to the order of this machine
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        return true;
    }
    bool ReadLines()
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_read_image(png_, lines_.data());
        return true;
    }
    SceneImage Converted() const
    {
        SceneImage image{
            png_get_image_width(png_, info_), png_get_image_height(png_, info_), png_get_channels(png_, info_), {}};
        image.samples.resize(std::size_t{image.width} * image.height * image.channels);
        const bool isWide = png_get_bit_depth(png_, info_) == 16;
        for (std::size_t i = 0; i < image.samples.size(); ++i) {
            std::uint16_t sample = pixels_[isWide ? 0 : i];
            if (isWide) {
                std::memcpy(&sample, &pixels_[2 * i], sizeof sample);
            }
            image.samples[i] = ToLight(sample, isWide ? 0xFFFF : 0xFF);
        }
        return image;
    }

    std::span<const std::byte> rest_;
    std::array<char, 128> message_{};
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::vector<png_byte> pixels_;
    std::vector<png_bytep> lines_;
};

} // namespace

SceneImage DecodePng(std::span<const std::byte> bytes) { return PngDecoder(bytes).Decode(); }

} // namespace Orvi::Vcam
