// Registers of the stream and the event interface.

#include "features/FeatureCall.h"
#include "features/NodeAccess.h"
#include "features/RegisterBlock.h"
#include "features/RegisterMap.h"
#include "features/UNI_Interface.h"

namespace Orvi {

namespace {

/// A size that stands in a register, or else in a node. Cameras without a register map have neither.
CAM_API_STATUS ReadSize(const FeatureCamera &camera, uint64_t ullAdrs, const char *pszNode, uint32_t *puiSize)
{
    if (!camera.HasRegisterMap())
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    uint32_t uiSize = 0;
    const CAM_API_STATUS status = ReadWord(camera.hCam, ullAdrs, &uiSize);
    if (status != CAM_API_STS_SUCCESS) {
        int32_t iSize = 0;
        if (GetGenIntValue(camera.hCam, pszNode, &iSize) != CAM_API_STS_SUCCESS)
            return status; // why the register failed says more than that a node is missing
        uiSize = static_cast<uint32_t>(iSize);
    }
    *puiSize = uiSize;
    return CAM_API_STS_SUCCESS;
}

/// The node is an integer on some cameras and a boolean on others.
CAM_API_STATUS ReadStreamEnableNode(CAM_HANDLE hCam, bool *pbEnable)
{
    constexpr char name[] = "StreamEnable";
    int32_t iEnable = 0;
    if (GetGenIntValue(hCam, name, &iEnable) != CAM_API_STS_SUCCESS)
        return GetGenBoolValue(hCam, name, pbEnable);
    *pbEnable = iEnable != 0;
    return CAM_API_STS_SUCCESS;
}

} // namespace

CAM_API_STATUS GetCamEventTransferSize(CAM_HANDLE hCam, uint32_t *puiTransferSize)
{
    return FeatureCall(
        __func__, hCam, {puiTransferSize}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return ReadSize(camera, RegMapKX::MaxEventTransfer, "MaximumEventTransferLength", puiTransferSize);
        },
        LOG_TEXT("*puiTransferSize=%d", *puiTransferSize));
}

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamStreamPayloadSize(CAM_HANDLE hCam, uint32_t *puiPayloadSize)
{
    return FeatureCall(
        __func__, hCam, {puiPayloadSize}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return ReadSize(camera, RegMapKX::RequiredPayloadSize, "SIRequiredPayloadSize", puiPayloadSize);
        },
        LOG_TEXT("*puiPayloadSize=%d", *puiPayloadSize));
}

CAM_API_STATUS GetCamStreamEnable(CAM_HANDLE hCam, bool *pbEnable)
{
    return FeatureCall(
        __func__, hCam, {pbEnable}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) -> CAM_API_STATUS {
            if (camera.eCamType == CAM_TYPE_GEV)
                return CAM_API_STS_NOT_IMPLEMENTED;
            if (!camera.HasRegisterMap())
                return CAM_API_STS_INVALID_CAMERA_HANDLE;
            uint32_t uiControl = 0;
            if (ReadWord(hCam, RegMapKX::StreamControl, &uiControl) != CAM_API_STS_SUCCESS)
                return ReadStreamEnableNode(hCam, pbEnable);
            *pbEnable = uiControl != 0;
            return CAM_API_STS_SUCCESS;
        },
        LOG_TEXT("*pbEnable=%d", *pbEnable));
}
