#pragma once
// Files that are replaced as a whole: who reads one sees the old bytes or the new ones, never a part.

#include <string>
#include <string_view>

namespace Orvi::U3v {

/// Throws std::system_error, whose text names the file and the reason; the old file is then still there.
void WriteFileAtomically(const std::string &path, std::string_view bytes);

/// The whole file, up to 64 MB. Throws std::system_error as above.
std::string ReadWholeFile(const std::string &path);

} // namespace Orvi::U3v
