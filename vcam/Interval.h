#pragma once

#include <cstdint>

namespace Orvi::Vcam {

/// A range of columns or lines; empty when last < first.
struct Interval {
    std::int64_t first, last;
    bool IsEmpty() const { return last < first; }
};

} // namespace Orvi::Vcam
