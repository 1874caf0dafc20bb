#pragma once
// The image size: one block of 17 control registers, of which each field is limited by another one's present value.

#include "foundation/PublicApi.h"

namespace Orvi {

/// The fields that can be written.
enum IIDC_IMAGE_SIZE_TYPE : uint32_t {
    IIDC_IMAGE_SIZE_OFFSET_X = 0,
    IIDC_IMAGE_SIZE_OFFSET_Y = 1,
    IIDC_IMAGE_SIZE_WIDTH = 2,
    IIDC_IMAGE_SIZE_HEIGHT = 3,
};

struct ImageSizeLimits {
    uint32_t uiMin, uiMax, uiInc;
};

CAM_API_STATUS ReadImageSizeLimitsIIDCReg(CAM_HANDLE hCam, IIDC_IMAGE_SIZE_TYPE eType, ImageSizeLimits *pLimits);

/// Offset and size together must stay on the sensor: a caller who enlarges a size moves its offset first.
/// 0x807 without the right to write, while streaming, or when the camera names no increment; 0x0D outside the limits or
/// off the increments; 0xFFFFFFFF for no field.
CAM_API_STATUS WriteImageSizeIIDCReg(CAM_HANDLE hCam, IIDC_IMAGE_SIZE_TYPE eType, uint32_t uiValue);

} // namespace Orvi
