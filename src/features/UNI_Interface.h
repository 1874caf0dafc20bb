#pragma once
// The size that events need, for the event channel. Not a public function: applications get it from Evt_Open().

#include "foundation/PublicApi.h"

namespace Orvi {

/// Bytes of the largest event packet of a camera.
ORVI_EXPORT CAM_API_STATUS GetCamEventTransferSize(CAM_HANDLE hCam, uint32_t *puiTransferSize);

} // namespace Orvi
