#include "u3v/protocol/DescriptionCache.h"

#include "u3v/core/AtomicFile.h"
#include "u3v/core/Log.h"
#include "u3v/protocol/Sha1.h"

#include <cstdlib>
#include <system_error>

namespace Orvi::U3v {
namespace {

// Cameras may put anything into their texts; only what is harmless in a file name stays.
std::string FileNamePart(const std::string &text)
{
    constexpr std::size_t maxLength = 40;
    std::string part = text.substr(0, maxLength);
    for (char &c : part)
        if ((c < '0' || c > '9') && (c < 'A' || c > 'Z') && (c < 'a' || c > 'z'))
            c = '_';
    return part;
}

std::string Hex(const DescriptionCache::Digest &digest)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const std::byte b : digest) {
        text += digits[std::to_integer<unsigned>(b) >> 4];
        text += digits[std::to_integer<unsigned>(b) & 0xF];
    }
    return text;
}

} // namespace

DescriptionCache::DescriptionCache(std::string folder, const DeviceIdentity &identity)
    : folder_(std::move(folder)),
      camera_(FileNamePart(identity.manufacturer) + '-' + FileNamePart(identity.model) + '-' +
              FileNamePart(identity.deviceVersion))
{
}

DescriptionCache DescriptionCache::FromEnvironment(const DeviceIdentity &identity)
{
    const char *const folder = std::getenv("GENICAM_CACHE_V3_0");
    return {folder == nullptr ? "" : folder, identity};
}

std::string DescriptionCache::PathOf(const Digest &sha1) const
{
    return folder_ + '/' + camera_ + '-' + Hex(sha1) + ".description";
}

std::optional<std::vector<std::byte>> DescriptionCache::Find(const Digest &sha1) const
{
    if (folder_.empty())
        return std::nullopt;
    try {
        const std::string stored = ReadWholeFile(PathOf(sha1));
        const auto bytes = std::as_bytes(std::span(stored));
        if (Sha1(bytes) == sha1)
            return std::vector<std::byte>(bytes.begin(), bytes.end());
        LogDevice(CAM_LOG_LEVEL_WARN, "%s is damaged: fetching the description anew", PathOf(sha1).c_str());
    } catch (const std::system_error &error) {
        if (error.code() != std::errc::no_such_file_or_directory)
            LogDevice(CAM_LOG_LEVEL_WARN, "description cache: %s", error.what());
    }
    return std::nullopt;
}

void DescriptionCache::Keep(const Digest &sha1, std::span<const std::byte> stored) const
{
    if (folder_.empty())
        return;
    try {
        WriteFileAtomically(PathOf(sha1), {reinterpret_cast<const char *>(stored.data()), stored.size()});
    } catch (const std::system_error &error) {
        LogDevice(CAM_LOG_LEVEL_WARN, "description cache: %s", error.what());
    }
}

} // namespace Orvi::U3v
