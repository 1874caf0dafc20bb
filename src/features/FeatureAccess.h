#pragma once
// The two roads to a feature: nodes of the camera's description, and registers of its control-register map.

#include "foundation/PublicApi.h"

namespace Orvi {

/// Node road. Each looks the node up by name, checks its access mode and then reads it. Statuses besides those of the
/// node functions: 0x07 zero handle, 0x0D null argument, 0x11 not implemented, 0x808 not available, 0x806 not readable,
/// 0xFFFFFFFF after an exception.
CAM_API_STATUS GetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t *piValue);
CAM_API_STATUS GetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool *pbValue);

/// Register road: one word as it stands.
CAM_API_STATUS ReadWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t *puiWord);

} // namespace Orvi
