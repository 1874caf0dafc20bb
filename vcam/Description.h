#pragma once
// The camera's GenICam description: VirtualCamera.xml, built into the program, and the zip archive that the manifest
// names.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

std::string_view DescriptionXml();

/// A description as stored in a camera's memory.
struct StoredDescription {
    std::vector<std::byte> archive;
    std::array<std::byte, 20> sha1;
};
std::shared_ptr<const StoredDescription> StoreDescription(std::string_view xml);

/// The camera's own description without the entries of pixel formats that it does not offer; an empty list offers all.
std::string OwnXml(std::span<const std::uint32_t> pixelFormats);
/// The same, made once when all formats are offered.
std::shared_ptr<const StoredDescription> OwnDescription(std::span<const std::uint32_t> pixelFormats);

/// An XML description without those entries of its enumeration that have none of the values.
std::string KeepEntries(std::string xml, std::string_view enumeration, std::span<const std::uint32_t> values);

} // namespace Orvi::Vcam
