#include "u3v/protocol/Sha1.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>

namespace Orvi::U3v {
namespace {

using Block = std::span<const std::byte, 64>;

void AddBlock(std::array<std::uint32_t, 5> &state, Block block)
{
    std::array<std::uint32_t, 80> w;
    for (std::size_t i = 0; i < 16; ++i)
        w[i] = std::to_integer<std::uint32_t>(block[4 * i]) << 24 |
               std::to_integer<std::uint32_t>(block[4 * i + 1]) << 16 |
               std::to_integer<std::uint32_t>(block[4 * i + 2]) << 8 | std::to_integer<std::uint32_t>(block[4 * i + 3]);
    for (std::size_t i = 16; i < 80; ++i)
        w[i] = std::rotl(w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16], 1);
    auto [a, b, c, d, e] = state;
    for (std::size_t i = 0; i < 80; ++i) {
        const std::uint32_t f = i < 20   ? ((b & c) | (~b & d)) + 0x5A827999
                                : i < 40 ? (b ^ c ^ d) + 0x6ED9EBA1
                                : i < 60 ? ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC
                                         : (b ^ c ^ d) + 0xCA62C1D6;
        const std::uint32_t next = std::rotl(a, 5) + f + e + w[i];
        e = d;
        d = c;
        c = std::rotl(b, 30);
        b = a;
        a = next;
    }
    const std::array<std::uint32_t, 5> sum = {a, b, c, d, e};
    std::transform(state.begin(), state.end(), sum.begin(), state.begin(), std::plus<>());
}

} // namespace

std::array<std::byte, 20> Sha1(std::span<const std::byte> data)
{
    std::array<std::uint32_t, 5> state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    const std::uint64_t bits = data.size() * 8ULL;
    while (data.size() >= 64) {
        AddBlock(state, data.first<64>());
        data = data.subspan(64);
    }
    std::array<std::byte, 128> tail{};
    std::copy(data.begin(), data.end(), tail.begin());
    tail[data.size()] = std::byte{0x80};
    const std::size_t tailSize = data.size() < 56 ? 64 : 128;
    for (std::size_t i = 0; i < 8; ++i)
        tail[tailSize - 1 - i] = static_cast<std::byte>(bits >> (8 * i));
    for (std::size_t at = 0; at < tailSize; at += 64)
        AddBlock(state, std::span(tail).subspan(at).first<64>());

    std::array<std::byte, 20> digest;
    for (std::size_t i = 0; i < digest.size(); ++i)
        digest[i] = static_cast<std::byte>(state[i / 4] >> (24 - 8 * (i % 4)));
    return digest;
}

} // namespace Orvi::U3v
