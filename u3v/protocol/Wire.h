#pragma once
// Little-endian numbers in byte buffers, and the numbers of the protocols that begin packets.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace Orvi::U3v {

static_assert(std::endian::native == std::endian::little, "USB3 Vision is little endian, and so is this code");

template <class T>
T Load(std::span<const std::byte> bytes, std::size_t offset)
{
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <class T>
void Store(std::span<std::byte> bytes, std::size_t offset, T value)
{
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

constexpr std::uint32_t controlPrefix = 0x43563355; // U3VC
constexpr std::uint32_t leaderPrefix = 0x4C563355;  // U3VL
constexpr std::uint32_t trailerPrefix = 0x54563355; // U3VT
constexpr std::uint32_t eventPrefix = 0x45563355;   // U3VE

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) { return (size + unit - 1) / unit * unit; }

} // namespace Orvi::U3v
