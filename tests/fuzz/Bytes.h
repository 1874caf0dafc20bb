#pragma once
// Takes an input apart, from front to back. What is missing at its end reads as zeros.

#include "tests/fuzz/Targets.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Orvi::Fuzz {

class Bytes {
  public:
    explicit Bytes(Input input) : rest_(input) {}

    bool IsEmpty() const { return rest_.empty(); }

    /// As many as there are, at most `count`.
    Input Take(std::size_t count)
    {
        const Input taken = rest_.first(std::min(count, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }
    Input TakeAll() { return Take(rest_.size()); }

    template <class T>
    T Number()
    {
        T value{};
        const Input bytes = Take(sizeof value);
        std::copy(bytes.begin(), bytes.end(), std::as_writable_bytes(std::span(&value, 1)).begin());
        return value;
    }

    /// Bytes behind a length byte.
    Input Field() { return Take(Number<std::uint8_t>()); }

  private:
    Input rest_;
};

inline std::string_view TextOf(Input input) { return {reinterpret_cast<const char *>(input.data()), input.size()}; }

} // namespace Orvi::Fuzz
