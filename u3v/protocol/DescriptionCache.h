#pragma once
// Descriptions that were fetched before, kept in the folder that GENICAM_CACHE_V3_0 names. A file is named by the
// camera's vendor, model and version and by the SHA-1 of its bytes, which also tells whether it is whole. Failures cost
// time, never an open: the description then comes from the camera.

#include "u3v/usb/UsbLink.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::U3v {

class DescriptionCache {
  public:
    using Digest = std::array<std::byte, 20>;

    /// An empty folder: no cache.
    DescriptionCache(std::string folder, const DeviceIdentity &identity);
    /// The cache that the environment asks for.
    static DescriptionCache FromEnvironment(const DeviceIdentity &identity);

    /// The bytes as the camera stores them. Nothing when they are not there, or damaged.
    std::optional<std::vector<std::byte>> Find(const Digest &sha1) const;
    void Keep(const Digest &sha1, std::span<const std::byte> stored) const;
    std::string PathOf(const Digest &sha1) const;

  private:
    std::string folder_;
    std::string camera_;
};

} // namespace Orvi::U3v
