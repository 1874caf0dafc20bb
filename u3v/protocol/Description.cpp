#include "u3v/protocol/Description.h"

#include "u3v/core/Log.h"
#include "u3v/core/Status.h"
#include "u3v/protocol/BootstrapMap.h"
#include "u3v/protocol/Sha1.h"
#include "u3v/protocol/Wire.h"
#include "u3v/protocol/Zip.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

namespace Orvi::U3v {
namespace {

constexpr std::uint64_t maxEntries = 256;
constexpr std::uint64_t maxStoredSize = 64U << 20;
constexpr std::size_t entrySize = 64;

ManifestEntry ParseEntry(std::span<const std::byte> bytes)
{
    // Stored as subminor (16 bits), minor, major: as one little-endian number it sorts by age.
    ManifestEntry entry = {Load<std::uint32_t>(bytes, 0),
                           Load<std::uint32_t>(bytes, 4),
                           Load<std::uint64_t>(bytes, 8),
                           Load<std::uint64_t>(bytes, 16),
                           {}};
    std::copy_n(bytes.begin() + 24, entry.sha1.size(), entry.sha1.begin());
    return entry;
}

std::string WithoutPadding(std::string text)
{
    text.erase(text.find_last_not_of('\0') + 1);
    return text;
}

} // namespace

std::vector<ManifestEntry> ReadManifest(GenCp &control, std::uint64_t manifestAddress)
{
    const auto count = ReadRegister(control, manifestAddress, Register<std::uint64_t>{0});
    if (count > maxEntries)
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, "the camera's manifest has " + std::to_string(count) + " entries");
    std::vector<ManifestEntry> entries;
    for (std::uint64_t i = 0; i < count; ++i) {
        std::array<std::byte, entrySize> bytes;
        control.Read(manifestAddress + 8 + i * entrySize, bytes);
        entries.push_back(ParseEntry(bytes));
    }
    return entries;
}

std::vector<ManifestEntry> UsableEntries(const std::vector<ManifestEntry> &entries)
{
    std::vector<ManifestEntry> usable;
    std::ranges::copy_if(entries, std::back_inserter(usable), [](const ManifestEntry &entry) {
        return entry.IsDeviceDescription() && entry.HasKnownCompression() && entry.size != 0;
    });
    if (usable.empty())
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, "the camera's manifest names no usable description");
    std::ranges::stable_sort(usable, std::greater(), [](const ManifestEntry &entry) {
        return std::pair(entry.HasKnownSchema(), entry.fileVersion);
    });
    return usable;
}

std::string UnpackDescription(const ManifestEntry &entry, std::span<const std::byte> stored)
{
    if (entry.HasSha1() && Sha1(stored) != entry.sha1)
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, "the camera's description is damaged: its SHA-1 differs");
    if (entry.IsZipped())
        return WithoutPadding(UnzipFirstFile(stored));
    return WithoutPadding(std::string(reinterpret_cast<const char *>(stored.data()), stored.size()));
}

static std::string FetchEntry(GenCp &control, const ManifestEntry &entry, const DescriptionCache &cache)
{
    if (entry.HasSha1())
        if (const auto stored = cache.Find(entry.sha1))
            return UnpackDescription(entry, *stored);
    if (entry.size > maxStoredSize)
        throw StatusError(CAM_API_STS_XML_LOAD_ERR,
                          "the camera's description has " + std::to_string(entry.size) + " bytes");
    std::vector<std::byte> stored(entry.size);
    control.Read(entry.address, stored);
    std::string xml = UnpackDescription(entry, stored);
    if (entry.HasSha1())
        cache.Keep(entry.sha1, stored);
    return xml;
}

std::string FetchDescription(GenCp &control, std::uint64_t manifestAddress, const DescriptionCache &cache)
{
    const std::vector<ManifestEntry> entries = UsableEntries(ReadManifest(control, manifestAddress));
    for (const ManifestEntry &entry : entries) {
        try {
            return FetchEntry(control, entry, cache);
        } catch (const StatusError &error) {
            if (error.Status() != CAM_API_STS_XML_LOAD_ERR || entries.size() == 1)
                throw;
            LogDevice(CAM_LOG_LEVEL_WARN, "%s: trying the next description of the manifest", error.what());
        }
    }
    throw StatusError(CAM_API_STS_XML_LOAD_ERR, "none of the camera's descriptions can be used");
}

std::string ReadDescriptionFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string stored((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file || stored.empty())
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, "cannot read the description file " + path);
    const auto bytes = std::as_bytes(std::span(stored));
    return WithoutPadding(IsZip(bytes) ? UnzipFirstFile(bytes) : stored);
}

} // namespace Orvi::U3v
