#include "vcam/BlockIdMark.h"

#include <algorithm>

namespace Orvi::Vcam {

using std::uint32_t, std::uint64_t;

namespace {

// clang-format off
constexpr std::uint8_t s_digits[10][7] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x06, 0x08, 0x10, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C},
};
// clang-format on

} // namespace

BlockIdMark::BlockIdMark(const PictureSettings &settings, uint64_t block)
    : block_(block),
      bitColumns_(settings.showsBlockId ? std::min(settings.width, 64u) : 0),
      scale_(std::clamp(std::min(settings.width / 160, settings.height / 100), 1u, 8u))
{
    if (!settings.showsBlockId) {
        return;
    }
    do {
        digits_[digitCount_++] = static_cast<std::uint8_t>(block % 10);
        block /= 10;
    } while (block != 0);
    std::reverse(digits_.begin(), digits_.begin() + digitCount_);
}

std::optional<bool> BlockIdMark::At(uint32_t x, uint32_t y) const
{
    if (y == 0 && x < bitColumns_) {
        return Bit(x);
    }
    const Interval lines = BoxLines(), columns = BoxColumns();
    if (y < lines.first || y > lines.last || x < columns.first || x > columns.last) {
        return std::nullopt;
    }
    // A margin of one dot around cells of six by seven dots.
    const uint32_t column = x / scale_ - 2;
    const uint32_t line = y / scale_ - 2;
    if (x / scale_ < 2 || y / scale_ < 2 || line >= 7 || column % 6 == 5 || column / 6 >= digitCount_) {
        return false;
    }
    return (s_digits[digits_[column / 6]][line] >> (4 - column % 6) & 1) != 0;
}

} // namespace Orvi::Vcam
