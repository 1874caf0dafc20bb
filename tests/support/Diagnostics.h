#pragma once
// The library's diagnostic hook: the test program defines DEBUG_PRINT() and so receives what the library hands to it.

#include <string>
#include <vector>

namespace Orvi::Testing {

/// The texts since the last time.
std::vector<std::string> TakeDiagnostics();

} // namespace Orvi::Testing
