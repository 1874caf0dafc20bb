#pragma once
// The camera's GenICam description: VirtualCamera.xml, built into the program, and the zip archive that the manifest
// names.

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace Orvi::Vcam {

std::string_view DescriptionXml();

/// The archive as stored in the camera's memory; made once.
std::span<const std::byte> DescriptionArchive();
const std::array<std::byte, 20> &DescriptionSha1();

} // namespace Orvi::Vcam
