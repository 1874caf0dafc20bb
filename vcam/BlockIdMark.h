#pragma once
// The block id as every picture shows it to programs and people.

#include "vcam/Interval.h"
#include "vcam/PictureSettings.h"

#include <optional>

namespace Orvi::Vcam {

/// The block id in the picture: its bits in line 0, its digits in a black box below.
class BlockIdMark {
  public:
    BlockIdMark(const PictureSettings &settings, std::uint64_t block);

    /// White (true), black (false), or no part of the mark.
    std::optional<bool> At(std::uint32_t x, std::uint32_t y) const;
    std::uint32_t BitColumns() const { return bitColumns_; }
    bool Bit(std::uint32_t x) const { return (block_ >> (bitColumns_ - 1 - x) & 1) != 0; }
    /// Side of the squares that the digits and their box are made of.
    std::uint32_t Scale() const { return scale_; }
    /// Empty when the settings show no mark.
    Interval BoxLines() const { return {scale_, digitCount_ == 0 ? 0 : std::int64_t{scale_} * 10 - 1}; }
    Interval BoxColumns() const
    {
        return {scale_, digitCount_ == 0 ? 0 : std::int64_t{scale_} * (2 + 6 * digitCount_) - 1};
    }

  private:
    std::uint64_t block_;
    std::uint32_t bitColumns_;
    std::uint32_t scale_;
    std::uint32_t digitCount_ = 0;
    std::array<std::uint8_t, 20> digits_{};
};

} // namespace Orvi::Vcam
