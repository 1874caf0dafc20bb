#include "u3v/protocol/Zip.h"

#include "u3v/core/Status.h"
#include "u3v/protocol/Wire.h"

#include <zlib.h>

namespace Orvi::U3v {
namespace {

constexpr std::uint32_t localSignature = 0x04034B50, centralSignature = 0x02014B50, endSignature = 0x06054B50;
constexpr std::size_t localSize = 30, centralSize = 46, endSize = 22;
constexpr std::uint16_t stored = 0, deflated = 8;
constexpr std::uint32_t maxSize = 256U << 20;
// Deflate makes no more than this of a byte: what claims more is refused before memory is taken for it.
constexpr std::size_t maxRatio = 1032;

[[noreturn]] void Fail(const char *why)
{
    throw StatusError(CAM_API_STS_XML_LOAD_ERR, std::string("the zipped description cannot be unpacked: ") + why);
}

// Of an archive that may be padded behind its end.
std::size_t FindEndRecord(std::span<const std::byte> archive)
{
    for (std::size_t at = archive.size() < endSize ? 0 : archive.size() - endSize + 1; at-- > 0;)
        if (Load<std::uint32_t>(archive, at) == endSignature)
            return at;
    Fail("it has no end record");
}

std::string Inflate(std::span<const std::byte> data, std::uint32_t size)
{
    std::string text(size, '\0');
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        throw std::bad_alloc();
    stream.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef *>(text.data());
    stream.avail_out = size;
    const int result = inflate(&stream, Z_FINISH);
    const bool isWhole = result == Z_STREAM_END && stream.avail_out == 0;
    inflateEnd(&stream);
    if (!isWhole)
        Fail("its data are damaged");
    return text;
}

} // namespace

bool IsZip(std::span<const std::byte> bytes)
{
    return bytes.size() >= endSize && Load<std::uint32_t>(bytes, 0) == localSignature;
}

std::string UnzipFirstFile(std::span<const std::byte> archive)
{
    const std::size_t end = FindEndRecord(archive);
    const std::size_t central = Load<std::uint32_t>(archive, end + 16);
    if (central + centralSize > archive.size() || Load<std::uint32_t>(archive, central) != centralSignature)
        Fail("it has no directory");
    const auto method = Load<std::uint16_t>(archive, central + 10);
    const auto crc = Load<std::uint32_t>(archive, central + 16);
    const std::size_t packedSize = Load<std::uint32_t>(archive, central + 20);
    const auto size = Load<std::uint32_t>(archive, central + 24);
    const std::size_t local = Load<std::uint32_t>(archive, central + 42);
    if (local + localSize > archive.size() || Load<std::uint32_t>(archive, local) != localSignature)
        Fail("it has no file");
    const std::size_t data =
        local + localSize + Load<std::uint16_t>(archive, local + 26) + Load<std::uint16_t>(archive, local + 28);
    if (data > archive.size() || packedSize > archive.size() - data || size > maxSize || size / maxRatio > packedSize)
        Fail("its sizes are wrong");

    const auto packed = archive.subspan(data, packedSize);
    std::string text;
    if (method == deflated)
        text = Inflate(packed, size);
    else if (method == stored && packedSize == size)
        text.assign(reinterpret_cast<const char *>(packed.data()), packed.size());
    else
        Fail("its method is unknown");
    if (crc32(0, reinterpret_cast<const Bytef *>(text.data()), static_cast<uInt>(text.size())) != crc)
        Fail("its checksum differs");
    return text;
}

} // namespace Orvi::U3v
