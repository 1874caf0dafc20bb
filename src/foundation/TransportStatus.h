#pragma once
// What a transport may return beyond the public statuses.

#include <cstdint>

/// The transport has the entry point but cannot serve it. Never reaches an application.
#define U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE UINT32_C(0xB000)
