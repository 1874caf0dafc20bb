#pragma once
// Zip archives as cameras store them: one file, stored or deflated.

#include <cstddef>
#include <span>
#include <string>

namespace Orvi::U3v {

bool IsZip(std::span<const std::byte> bytes);

/// The contents of the archive's first file, checked. Throws StatusError(0x101).
std::string UnzipFirstFile(std::span<const std::byte> archive);

} // namespace Orvi::U3v
