#include "vcam/image/ImageReader.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <tiffio.h>

namespace Orvi::Vcam {

namespace {

/// libtiff, loaded when the first TIFF is read: with its codecs it is a dozen libraries, which a transport for real
/// cameras is not to load.
class LibTiff {
  private:
    // The library of the headers that this was built with.
    void *const library_ = dlopen("libtiff.so.6", RTLD_NOW | RTLD_LOCAL);

    template <class Function>
    Function *Find(const char *name)
    {
        auto *function = library_ == nullptr ? nullptr : reinterpret_cast<Function *>(dlsym(library_, name));
        isComplete = isComplete && function != nullptr;
        return function;
    }

  public:
    bool isComplete = true;
    // clang-format off
    decltype(&::TIFFOpenOptionsAlloc) TIFFOpenOptionsAlloc = Find<decltype(::TIFFOpenOptionsAlloc)>("TIFFOpenOptionsAlloc");
    decltype(&::TIFFOpenOptionsSetErrorHandlerExtR) TIFFOpenOptionsSetErrorHandlerExtR = Find<decltype(::TIFFOpenOptionsSetErrorHandlerExtR)>("TIFFOpenOptionsSetErrorHandlerExtR");
    decltype(&::TIFFOpenOptionsSetWarningHandlerExtR) TIFFOpenOptionsSetWarningHandlerExtR = Find<decltype(::TIFFOpenOptionsSetWarningHandlerExtR)>("TIFFOpenOptionsSetWarningHandlerExtR");
    decltype(&::TIFFOpenOptionsFree) TIFFOpenOptionsFree = Find<decltype(::TIFFOpenOptionsFree)>("TIFFOpenOptionsFree");
    decltype(&::TIFFClientOpenExt) TIFFClientOpenExt = Find<decltype(::TIFFClientOpenExt)>("TIFFClientOpenExt");
    decltype(&::TIFFClose) TIFFClose = Find<decltype(::TIFFClose)>("TIFFClose");
    decltype(&::TIFFGetField) TIFFGetField = Find<decltype(::TIFFGetField)>("TIFFGetField");
    decltype(&::TIFFGetFieldDefaulted) TIFFGetFieldDefaulted = Find<decltype(::TIFFGetFieldDefaulted)>("TIFFGetFieldDefaulted");
    decltype(&::TIFFIsTiled) TIFFIsTiled = Find<decltype(::TIFFIsTiled)>("TIFFIsTiled");
    decltype(&::TIFFScanlineSize) TIFFScanlineSize = Find<decltype(::TIFFScanlineSize)>("TIFFScanlineSize");
    decltype(&::TIFFReadScanline) TIFFReadScanline = Find<decltype(::TIFFReadScanline)>("TIFFReadScanline");
    decltype(&::TIFFReadRGBAImageOriented) TIFFReadRGBAImageOriented = Find<decltype(::TIFFReadRGBAImageOriented)>("TIFFReadRGBAImageOriented");
    // clang-format on
};

const LibTiff &Tiff()
{
    static const LibTiff s_tiff;
    if (!s_tiff.isComplete) {
        throw ImageError("is a TIFF, and libtiff.so.6 is not installed");
    }
    return s_tiff;
}

/// A file in memory, as libtiff reads it.
struct Memory {
    std::span<const std::byte> bytes;
    std::uint64_t at = 0;
};

tmsize_t Read(thandle_t handle, void *to, tmsize_t size)
{
    auto &memory = *static_cast<Memory *>(handle);
    const std::uint64_t left = memory.bytes.size() - std::min<std::uint64_t>(memory.at, memory.bytes.size());
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(left, static_cast<std::uint64_t>(size)));
    if (length != 0) {
        std::memcpy(to, memory.bytes.data() + memory.at, length);
    }
    memory.at += length;
    return static_cast<tmsize_t>(length);
}

tmsize_t Write(thandle_t, void *, tmsize_t) { return -1; }

toff_t Seek(thandle_t handle, toff_t offset, int whence)
{
    auto &memory = *static_cast<Memory *>(handle);
    memory.at = offset + (whence == SEEK_CUR ? memory.at : whence == SEEK_END ? memory.bytes.size() : 0);
    return memory.at;
}

int Close(thandle_t) { return 0; }
toff_t Size(thandle_t handle) { return static_cast<Memory *>(handle)->bytes.size(); }

/// The first message of a file; libtiff would print them.
struct Message {
    std::array<char, 160> text{};
};
int OnError(TIFF *, void *user, const char *, const char *format, va_list arguments)
{
    auto &message = *static_cast<Message *>(user);
    if (message.text[0] == '\0') {
        std::vsnprintf(message.text.data(), message.text.size(), format, arguments);
    }
    return 1;
}
int OnWarning(TIFF *, void *, const char *, const char *, va_list) { return 1; }

class TiffDecoder {
  public:
    explicit TiffDecoder(std::span<const std::byte> bytes) : memory_{bytes}
    {
        TIFFOpenOptions *options = library_.TIFFOpenOptionsAlloc();
        library_.TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, &message_);
        library_.TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, nullptr);
        tiff_ = library_.TIFFClientOpenExt("image", "rm", &memory_, Read, Write, Seek, Close, Size, nullptr, nullptr,
                                           options);
        library_.TIFFOpenOptionsFree(options);
    }
    ~TiffDecoder()
    {
        if (tiff_ != nullptr) {
            library_.TIFFClose(tiff_);
        }
    }
    TiffDecoder(const TiffDecoder &) = delete;
    TiffDecoder &operator=(const TiffDecoder &) = delete;

    SceneImage Decode()
    {
        std::uint32_t width = 0, height = 0;
        if (tiff_ == nullptr || library_.TIFFGetField(tiff_, TIFFTAG_IMAGEWIDTH, &width) == 0 ||
            library_.TIFFGetField(tiff_, TIFFTAG_IMAGELENGTH, &height) == 0) {
            Fail();
        }
        CheckImageSize(width, height);
        const std::uint16_t bits = Field(TIFFTAG_BITSPERSAMPLE), samples = Field(TIFFTAG_SAMPLESPERPIXEL);
        const std::uint16_t colours = Field(TIFFTAG_PHOTOMETRIC);
        const bool isGrey = colours == PHOTOMETRIC_MINISBLACK && samples == 1;
        const bool isColour = colours == PHOTOMETRIC_RGB && samples >= 3;
        const bool isPlain = (bits == 8 || bits == 16) && Field(TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_UINT &&
                             Field(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG && library_.TIFFIsTiled(tiff_) == 0;
        SceneImage image{width, height, isGrey ? 1u : 3u, {}};
        image.samples.resize(std::size_t{width} * height * image.channels);
        if (isPlain && (isGrey || isColour)) {
            ReadLines(image, samples, bits == 16);
        } else {
            ReadAsRgba(image);
        }
        return image;
    }

  private:
    [[noreturn]] void Fail() const { throw ImageError("is a broken TIFF: " + std::string(message_.text.data())); }

    std::uint16_t Field(std::uint32_t tag) const
    {
        std::uint16_t value = 0;
        return library_.TIFFGetFieldDefaulted(tiff_, tag, &value) != 0 ? value : std::uint16_t{0};
    }
    void ReadLines(SceneImage &image, std::uint16_t samples, bool isWide)
    {
        const std::size_t needed = std::size_t{image.width} * samples * (isWide ? 2 : 1);
        std::vector<std::uint8_t> line(std::max(needed, static_cast<std::size_t>(library_.TIFFScanlineSize(tiff_))));
        std::uint16_t *to = image.samples.data();
        for (std::uint32_t y = 0; y < image.height; ++y) {
            if (library_.TIFFReadScanline(tiff_, line.data(), y, 0) < 0) {
                Fail();
            }
            for (std::size_t x = 0; x < image.width; ++x) {
                for (std::size_t channel = 0; channel < image.channels; ++channel) {
                    const std::size_t at = x * samples + channel;
                    std::uint16_t sample = line[isWide ? 0 : at];
                    if (isWide) {
                        std::memcpy(&sample, &line[2 * at], sizeof sample);
                    }
                    *to++ = ToLight(sample, isWide ? 0xFFFF : 0xFF);
                }
            }
        }
    }
    /// Everything else that libtiff knows: tiles, palettes, planes, other depths; 8 bits are left of each colour.
    void ReadAsRgba(SceneImage &image)
    {
        std::vector<std::uint32_t> pixels(std::size_t{image.width} * image.height);
        if (library_.TIFFReadRGBAImageOriented(tiff_, image.width, image.height, pixels.data(), ORIENTATION_TOPLEFT,
                                               1) == 0) {
            Fail();
        }
        std::uint16_t *to = image.samples.data();
        for (const std::uint32_t pixel : pixels) {
            const std::uint32_t colours[] = {TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel)};
            for (std::uint32_t channel = 0; channel < image.channels; ++channel) {
                *to++ = ToLight(colours[channel], 0xFF);
            }
        }
    }

    const LibTiff &library_ = Tiff();
    Memory memory_;
    Message message_;
    TIFF *tiff_ = nullptr;
};

} // namespace

SceneImage DecodeTiff(std::span<const std::byte> bytes) { return TiffDecoder(bytes).Decode(); }

} // namespace Orvi::Vcam
