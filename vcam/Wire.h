#pragma once
// Little-endian integers in memory, as every part of USB3 Vision puts them.

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace Orvi::Vcam {

static_assert(std::endian::native == std::endian::little, "the wire's byte order is taken as it is");

template <class T>
T LoadLe(const std::byte *from)
{
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void StoreLe(std::byte *to, T value)
{
    std::memcpy(to, &value, sizeof value);
}

/// Writes fields one after the other; the caller provides enough room.
class FieldWriter {
  public:
    explicit FieldWriter(std::span<std::byte> room) : room_(room) {}
    template <std::integral T>
    FieldWriter &Put(T value)
    {
        StoreLe(room_.data() + used_, value);
        used_ += sizeof value;
        return *this;
    }
    FieldWriter &Put(std::span<const std::byte> bytes)
    {
        std::memcpy(room_.data() + used_, bytes.data(), bytes.size());
        used_ += bytes.size();
        return *this;
    }
    std::size_t Used() const { return used_; }

  private:
    std::span<std::byte> room_;
    std::size_t used_ = 0;
};

} // namespace Orvi::Vcam
