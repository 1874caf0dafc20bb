#include "features/ImageSize.h"

#include "features/Feature.h"
#include "features/RegisterMap.h"

#include <iterator>

namespace Orvi {

namespace {

/// Where a field and what limits it stand in the block, in words.
struct FieldWords {
    unsigned minimum, increment;
    unsigned sensor;  ///< what field and partner may be together
    unsigned partner; ///< the offset of a size, the size of an offset
    unsigned current;
};

constexpr FieldWords s_fields[] = {
    {3, 4, 7, 14, 13},   // offset X
    {8, 9, 12, 16, 15},  // offset Y
    {5, 6, 7, 13, 14},   // width
    {10, 11, 12, 15, 16} // height
};

struct ImageSizeBlock {
    static constexpr uint32_t size = 17;
    uint32_t auiWords[size] = {};

    CAM_API_STATUS Read(CAM_HANDLE hCam)
    {
        if (const CAM_API_STATUS status = Cam_ReadReg(hCam, RegMapKX::ImageSize, size, auiWords))
            return status;
        return CheckInquiry(auiWords[0], Access::Read);
    }

    ImageSizeLimits Limits(const FieldWords &field) const
    {
        return {auiWords[field.minimum], auiWords[field.sensor] - auiWords[field.partner], auiWords[field.increment]};
    }

    /// In 64 bits, so that no sum wraps back onto the sensor.
    bool Fits(const FieldWords &field, uint32_t uiValue) const
    {
        return uiValue >= auiWords[field.minimum] &&
               uint64_t{auiWords[field.partner]} + uiValue <= auiWords[field.sensor];
    }
};

} // namespace

CAM_API_STATUS ReadImageSizeLimitsIIDCReg(CAM_HANDLE hCam, IIDC_IMAGE_SIZE_TYPE eType, ImageSizeLimits *pLimits)
{
    ImageSizeBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam))
        return status;
    *pLimits = block.Limits(s_fields[eType]);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS WriteImageSizeIIDCReg(CAM_HANDLE hCam, IIDC_IMAGE_SIZE_TYPE eType, uint32_t uiValue)
{
    if (hCam == 0)
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    ImageSizeBlock block;
    if (const CAM_API_STATUS status = block.Read(hCam))
        return status;
    if (const CAM_API_STATUS status = CheckInquiry(block.auiWords[0], Access::Write))
        return status;
    if (const CAM_API_STATUS status = RefuseWhileStreaming(hCam))
        return status;
    if (eType >= std::size(s_fields))
        return CAM_API_STS_UNSUCCESSFUL;
    const FieldWords &field = s_fields[eType];
    if (!block.Fits(field, uiValue))
        return CAM_API_STS_INVALID_PARAMETER;
    const ImageSizeLimits limits = block.Limits(field);
    if (limits.uiInc == 0)
        return CAM_API_STS_NOT_WRITABLE;
    if ((uiValue - limits.uiMin) % limits.uiInc != 0)
        return CAM_API_STS_INVALID_PARAMETER;
    return WriteWord(hCam, RegMapKX::ImageSize + 4 * field.current, uiValue);
}

} // namespace Orvi
