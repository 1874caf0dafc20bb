#pragma once
// What the node layer offers to the feature functions besides the public functions.

#include "foundation/PublicApi.h"

namespace Orvi {

/// Nd_SetEnumStrValue() under another name in the log, which tells the features' writes from the application's.
ORVI_EXPORT CAM_API_STATUS Nd_SetEnumStrValue2(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify);

} // namespace Orvi
