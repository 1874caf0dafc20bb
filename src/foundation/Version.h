#pragma once

namespace Orvi {

/// Version of the library, as applications and log dumps see it.
inline constexpr char s_apiVersion[] = "1.1.0";

} // namespace Orvi
