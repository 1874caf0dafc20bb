#pragma once
// A zip archive with one deflated file, as a device's manifest names it.

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

std::vector<std::byte> ZipOneFile(std::string_view name, std::span<const std::byte> content);

/// SHA-1 of the stored bytes, for the manifest entry.
std::array<std::byte, 20> Sha1(std::span<const std::byte> data);

} // namespace Orvi::Vcam
