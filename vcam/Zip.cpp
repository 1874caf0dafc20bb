#include "vcam/Zip.h"

#include "vcam/Wire.h"

#include <bit>
#include <concepts>
#include <stdexcept>
#include <zlib.h>

namespace Orvi::Vcam {

namespace {

using Bytes = std::vector<std::byte>;

Bytes Deflate(std::span<const std::byte> content)
{
    z_stream stream{};
    // Negative window bits: the bare deflate stream that zip archives hold.
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("zlib cannot start");
    }
    Bytes packed(deflateBound(&stream, static_cast<uLong>(content.size())));
    // zlib's interface is not const-correct; it does not write to its input.
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<std::byte *>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        throw std::runtime_error("zlib cannot deflate");
    }
    return packed;
}

constexpr std::size_t s_commonSize = 26, s_localSize = 4 + s_commonSize, s_centralSize = 6 + s_commonSize + 14,
                      s_endSize = 22;

} // namespace

Bytes ZipOneFile(std::string_view name, std::span<const std::byte> content)
{
    using std::uint16_t, std::uint32_t;
    const Bytes packed = Deflate(content);
    const auto crc = static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(content.data()), static_cast<uInt>(content.size())));
    const std::span nameBytes = std::as_bytes(std::span(name));

    // clang-format off
    // The part that the local and the central header share: version 2.0, no flags, deflated, 1980-01-01.
    std::array<std::byte, s_commonSize> common;
    FieldWriter(common)
        .Put(uint16_t{20}).Put(uint16_t{0}).Put(uint16_t{8}).Put(uint16_t{0}).Put(uint16_t{0x0021})
        .Put(crc).Put(static_cast<uint32_t>(packed.size())).Put(static_cast<uint32_t>(content.size()))
        .Put(static_cast<uint16_t>(name.size())).Put(uint16_t{0});

    const std::size_t local = s_localSize + name.size() + packed.size();
    const std::size_t central = s_centralSize + name.size();
    Bytes archive(local + central + s_endSize);
    FieldWriter(archive)
        .Put(uint32_t{0x04034B50}).Put(common).Put(nameBytes).Put(packed)
        .Put(uint32_t{0x02014B50}).Put(uint16_t{20}).Put(common)
        .Put(uint16_t{0}).Put(uint16_t{0}).Put(uint16_t{0}).Put(uint32_t{0}).Put(uint32_t{0}).Put(nameBytes)
        .Put(uint32_t{0x06054B50}).Put(uint32_t{0}).Put(uint16_t{1}).Put(uint16_t{1})
        .Put(static_cast<uint32_t>(central)).Put(static_cast<uint32_t>(local)).Put(uint16_t{0});
    // clang-format on
    return archive;
}

std::array<std::byte, 20> Sha1(std::span<const std::byte> data)
{
    std::uint32_t hash[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    Bytes padded(data.begin(), data.end());
    padded.push_back(std::byte{0x80});
    padded.resize((padded.size() + 8 + 63) / 64 * 64);
    const std::uint64_t bits = data.size() * 8;
    for (std::size_t i = 0; i < 8; ++i) {
        padded[padded.size() - 1 - i] = static_cast<std::byte>(bits >> (8 * i));
    }
    for (std::size_t block = 0; block < padded.size(); block += 64) {
        std::uint32_t w[80];
        for (std::size_t i = 0; i < 16; ++i) {
            w[i] = 0;
            for (std::size_t j = 0; j < 4; ++j) {
                w[i] = w[i] << 8 | std::to_integer<std::uint32_t>(padded[block + 4 * i + j]);
            }
        }
        for (std::size_t i = 16; i < 80; ++i) {
            w[i] = std::rotl(w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16], 1);
        }
        auto [a, b, c, d, e] = hash;
        for (std::size_t i = 0; i < 80; ++i) {
            const std::uint32_t mix = i < 20   ? ((b & c) | (~b & d)) + 0x5A827999
                                      : i < 40 ? (b ^ c ^ d) + 0x6ED9EBA1
                                      : i < 60 ? ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC
                                               : (b ^ c ^ d) + 0xCA62C1D6;
            const std::uint32_t next = std::rotl(a, 5) + mix + e + w[i];
            e = d;
            d = c;
            c = std::rotl(b, 30);
            b = a;
            a = next;
        }
        hash[0] += a;
        hash[1] += b;
        hash[2] += c;
        hash[3] += d;
        hash[4] += e;
    }
    std::array<std::byte, 20> digest;
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = static_cast<std::byte>(hash[i / 4] >> (24 - 8 * (i % 4)));
    }
    return digest;
}

} // namespace Orvi::Vcam
