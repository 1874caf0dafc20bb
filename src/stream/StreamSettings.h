#pragma once

#include <cstdint>

namespace Orvi {

/// Buffers that the transport keeps behind the API buffers of streams opened from now on.
extern uint32_t s_uiApiInternalStrmBufferCount;

} // namespace Orvi
