#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvi::GenApi {

/// A description as UTF-8: from UTF-16, from Windows-1252, or from what calls itself UTF-8 and has single bytes of
/// Windows-1252 in it, as units like the degree sign often are. Nothing when it is UTF-8 already. ISO 8859-1 differs
/// in control characters alone, which no description has: it is read as Windows-1252, too.
std::optional<std::string> ToUtf8(std::string_view xml);

} // namespace Orvi::GenApi
