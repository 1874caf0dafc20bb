#pragma once

#include <cstdint>

namespace Orvi::Bench {

/// Allocations of the whole process so far, the library's and the transport's included.
uint64_t Allocations();

} // namespace Orvi::Bench
