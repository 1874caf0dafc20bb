#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvi::GenApi {

/// A description as UTF-8: from UTF-16, from ISO 8859-1, or from what calls itself UTF-8 and has single bytes of ISO
/// 8859-1 in it, as units like the degree sign often are. Nothing when it is UTF-8 already.
std::optional<std::string> ToUtf8(std::string_view xml);

} // namespace Orvi::GenApi
