// Opening and closing cameras.

#include "transport/CallFrame.h"

#include <cstring>
#include <string_view>

namespace Orvi {

namespace {

constexpr uint32_t s_uiMaxPacketSize = 0x10000;

constexpr uint64_t s_streamControl = 0x20004;
constexpr uint64_t s_streamPayloadSize = 0x20008;
constexpr uint64_t s_eventControl = 0x30000;

/// Frees a camera from a stream that an earlier process has left running. Best effort: the camera is open whatever
/// becomes of it. The channel is the transport's alone; no record is made of it.
void DrainStream(CAM_HANDLE hCam)
try {
    uint32_t uiControl = 0;
    if (Cam_ReadReg(hCam, s_streamControl, 1, &uiControl) != CAM_API_STS_SUCCESS || uiControl == 0)
        return;
    uint32_t uiPayloadSize = 0;
    if (Cam_ReadReg(hCam, s_streamPayloadSize, 1, &uiPayloadSize) != CAM_API_STS_SUCCESS)
        return;
    CAM_HANDLE hStrm = 0;
    if (_Uc_Strm_Open(hCam, nullptr, uiPayloadSize, s_uiMaxPacketSize, &hStrm) != CAM_API_STS_SUCCESS)
        return;
    Cam_WriteReg(hCam, s_streamControl, 1, &uiControl);
    const uint32_t uiDisable = 0;
    Cam_WriteReg(hCam, s_eventControl, 1, &uiDisable);
    _Uc_Strm_Close(hStrm);
} catch (...) {
    return;
}

/// A null text matches every field. A field that is full has no closing NUL.
bool Matches(const char *pszText, const char (&szField)[64])
{
    return pszText == nullptr ||
           std::string_view(pszText) == std::string_view(szField, strnlen(szField, sizeof szField));
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Cam_Open(uint32_t uiCamIdx, CAM_HANDLE *phCam, void *pvRemovalSignal, bool bUseGenICam, void *pvXmlFile,
                        CAM_ACCESS_MODE eAccessMode)
{
    const auto enter = LOG_TEXT("uiCamIdx=%d, bUseGenICam=%d, eAccessMode=%d", uiCamIdx, bUseGenICam, eAccessMode);
    return GuardedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (CheckCameraIndex(uiCamIdx) != CAM_API_STS_SUCCESS || phCam == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *phCam = 0;
        CAMERA_INDEX_INFO &slot = g_camInfo[uiCamIdx];
        slot.bUseGenICam = bUseGenICam;
        if (slot.eCamType != CAM_TYPE_U3V)
            return frame.ExitLoggedAs(CAM_API_STS_UNSUCCESSFUL, CAM_API_STS_INVALID_PARAMETER);

        const auto exit = LOG_TEXT("*phCam=0x%llX", *phCam);
        const uint32_t uiDevNum = static_cast<uint32_t>(slot.iDevIdx) + 1;
        CAM_HANDLE hCam = 0;
        const CAM_API_STATUS status = ForwardToNodeMap(Uc::Cam_Open.ReportedAs("(UC_Cam_Open) Status %s\n"), uiDevNum,
                                                       pvRemovalSignal, &hCam, bUseGenICam, pvXmlFile);
        if (status == CAM_API_STS_ALREADY_OPENED) {
            *phCam = hCam;
            return frame.Exit(status, exit); // the record of the first open serves both
        }
        if (status != CAM_API_STS_SUCCESS)
            return status;
        *phCam = hCam;
        PushBackCamList({CAM_TYPE_U3V, uiCamIdx, uiDevNum, hCam, s_uiMaxPacketSize});
        frame.Exit(status, exit);
        DrainStream(hCam);
        return CAM_API_STS_SUCCESS;
    });
}

// Not guarded: the enumeration refuses when the library is not initialised.
CAM_API_STATUS Cam_OpenFromInfo(const char *pszSerialNumber, const char *pszModelName, const char *pszUserDefinedName,
                                CAM_HANDLE *phCam, void *pvRemovalSignal, bool bUseGenICam, void *pvXmlFile,
                                CAM_ACCESS_MODE eAccessMode)
{
    const auto enter = LOG_TEXT("bUseGenICam=%d, eAccessMode=%d", bUseGenICam, eAccessMode);
    return FramedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (pszSerialNumber == nullptr && pszModelName == nullptr && pszUserDefinedName == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        uint32_t uiNum = 0;
        if (const CAM_API_STATUS status = Sys_GetNumOfCameras(&uiNum))
            return status;
        for (uint32_t i = 0; i < uiNum; ++i) {
            CAM_INFO info;
            if (Cam_GetInformation(0, i, &info) != CAM_API_STS_SUCCESS)
                continue;
            if (!Matches(pszSerialNumber, info.szSerialNumber) || !Matches(pszModelName, info.szModelName) ||
                !Matches(pszUserDefinedName, info.szUserDefinedName))
                continue;
            const CAM_API_STATUS status = Cam_Open(i, phCam, pvRemovalSignal, bUseGenICam, pvXmlFile, eAccessMode);
            return status == CAM_API_STS_SUCCESS ? frame.Exit(status, LOG_TEXT("*phCam=0x%llX", *phCam)) : status;
        }
        return CAM_API_STS_INVALID_PARAMETER;
    });
}

CAM_API_STATUS Cam_Close(CAM_HANDLE hCam)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX", hCam), [&]() -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = Forward(Uc::Cam_Close.ReportedAs("(UC_Cam_Close) Status %s\n"), hCam))
            return status;
        EraseCamList(hCam);
        return CAM_API_STS_SUCCESS;
    });
}
