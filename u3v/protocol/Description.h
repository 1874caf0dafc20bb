#pragma once
// The camera's GenICam description: found through its manifest, fetched, checked and unpacked.

#include "u3v/protocol/DescriptionCache.h"
#include "u3v/protocol/GenCp.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvi::U3v {

struct ManifestEntry {
    std::uint32_t fileVersion; ///< major in bits 31..24, minor in 23..16, subminor below
    std::uint32_t schema;      ///< file type, compression, schema version
    std::uint64_t address;
    std::uint64_t size;
    std::array<std::byte, 20> sha1; ///< of the stored bytes; all zero: none given

    bool HasSha1() const { return sha1 != decltype(sha1){}; }
    bool IsDeviceDescription() const { return (schema & 0x7) == 0; }
    bool IsZipped() const { return (schema >> 10 & 0x3F) == 1; }
    bool HasKnownSchema() const { return schema >> 24 <= 1; }
    bool HasKnownCompression() const { return (schema >> 10 & 0x3F) <= 1; }
};

std::vector<ManifestEntry> ReadManifest(GenCp &control, std::uint64_t manifestAddress);

/// The descriptions that can be unpacked, the best first: of a schema that is understood, then the newest. Throws
/// StatusError(0x101) when there is none.
std::vector<ManifestEntry> UsableEntries(const std::vector<ManifestEntry> &entries);
inline ManifestEntry BestEntry(const std::vector<ManifestEntry> &entries) { return UsableEntries(entries).front(); }

/// The stored bytes as XML text: checked, unpacked, without padding. Throws StatusError(0x101).
std::string UnpackDescription(const ManifestEntry &entry, std::span<const std::byte> stored);

/// All of the above; what the cache has is not fetched, and where a description is damaged the next one is tried.
std::string FetchDescription(GenCp &control, std::uint64_t manifestAddress, const DescriptionCache &cache);

/// A description in a file of the user's, zipped or not. Throws StatusError(0x101).
std::string ReadDescriptionFile(const std::string &path);

} // namespace Orvi::U3v
