#include "vcam/image/ImageReader.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace Orvi::Vcam {

namespace {

class PnmDecoder {
  public:
    explicit PnmDecoder(std::span<const std::byte> bytes)
        : rest_(reinterpret_cast<const char *>(bytes.data()), bytes.size())
    {
    }

    SceneImage Decode()
    {
        const char kind = rest_[1];
        rest_.remove_prefix(2);
        SceneImage image;
        const std::uint32_t width = Number(), height = Number(), maximum = Number();
        CheckImageSize(width, height);
        if (maximum == 0 || maximum > 0xFFFF) {
            throw ImageError("is a broken PNM: its largest sample is " + std::to_string(maximum));
        }
        image.width = width;
        image.height = height;
        image.channels = kind == '3' || kind == '6' ? 3 : 1;
        const std::size_t count = std::size_t{width} * height * image.channels;
        const bool isText = kind < '4';
        const std::size_t bytes = maximum > 0xFF ? 2 : 1;
        if (!isText) {
            rest_.remove_prefix(rest_.empty() ? 0 : 1); // one white space
        }
        if (rest_.size() < (isText ? count : count * bytes)) {
            throw ImageError("is a broken PNM: it ends too early");
        }
        image.samples.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t sample = isText ? Number() : Binary(i, bytes);
            image.samples.push_back(ToLight(std::min(sample, maximum), maximum));
        }
        return image;
    }

  private:
    std::uint32_t Binary(std::size_t i, std::size_t bytes) const
    {
        const auto byte = [this](std::size_t at) { return static_cast<unsigned char>(rest_[at]); };
        return bytes == 1 ? byte(i) : byte(2 * i) * 256u + byte(2 * i + 1);
    }
    /// The next number after white space and comments.
    std::uint32_t Number()
    {
        while (!rest_.empty() &&
               (rest_[0] == '#' || std::string_view(" \t\r\n\v\f").find(rest_[0]) != std::string_view::npos)) {
            const std::size_t end = rest_[0] == '#' ? rest_.find('\n') : 0;
            rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        }
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
        if (error != std::errc()) {
            throw ImageError("is a broken PNM: a number is missing");
        }
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return number;
    }

    std::string_view rest_;
};

} // namespace

SceneImage DecodePnm(std::span<const std::byte> bytes) { return PnmDecoder(bytes).Decode(); }

} // namespace Orvi::Vcam
