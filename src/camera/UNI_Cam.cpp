// Registers, description, port, pipes and parameter files of an open camera.

#include "transport/CallFrame.h"

#include <cstring>

using namespace Orvi;

namespace {

/// First word of the caller's memory, which need not be aligned.
uint32_t FirstWord(const void *pvData)
{
    uint32_t uiWord;
    std::memcpy(&uiWord, pvData, sizeof uiWord);
    return uiWord;
}

CAM_API_STATUS AllTransferred(uint32_t uiDone, uint32_t uiAsked)
{
    return uiDone == uiAsked ? CAM_API_STS_SUCCESS : CAM_API_STS_UNSUCCESSFUL;
}

} // namespace

CAM_API_STATUS Cam_ReadReg(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiSizeQuadlet, void *pvData)
{
    return CameraCall(
        __func__, hCam, LOG_TEXT("hCam=0x%llX, ullAdrs=0x%llX, uiSizeQuadlet=%d", hCam, ullAdrs, uiSizeQuadlet),
        [&]() -> CAM_API_STATUS {
            uint32_t uiDone = uiSizeQuadlet;
            if (const CAM_API_STATUS status =
                    Forward(Uc::Cam_ReadReg.ReportedAs("(UC_Cam_ReadReg) Status %s\n"), hCam, ullAdrs, pvData, &uiDone))
                return status;
            return AllTransferred(uiDone, uiSizeQuadlet);
        },
        LOG_TEXT("pvData[0]=0x%08X", FirstWord(pvData)));
}

CAM_API_STATUS Cam_WriteReg(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t uiSizeQuadlet, const void *pvData)
{
    const auto enter = [&](LogWriter &write) {
        write("hCam=0x%llX, ullAdrs=0x%llX, uiSizeQuadlet=%d", hCam, ullAdrs, uiSizeQuadlet);
        if (pvData != nullptr)
            write("pvData[0]=0x%08X", FirstWord(pvData));
    };
    return CameraCall(__func__, hCam, enter, [&]() -> CAM_API_STATUS {
        uint32_t uiDone = uiSizeQuadlet;
        if (const CAM_API_STATUS status =
                Forward(Uc::Cam_WriteReg.ReportedAs("(UC_Cam_WriteReg) Status %s\n"), hCam, ullAdrs, pvData, &uiDone))
            return status;
        return AllTransferred(uiDone, uiSizeQuadlet);
    });
}

CAM_API_STATUS Cam_GetXmlData(CAM_HANDLE hCam, void *pvBuffer, uint64_t *pullSize)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX", hCam),
                      [&] { return Forward(Uc::Cam_GetXmlData, hCam, pvBuffer, pullSize); });
}

CAM_API_STATUS Cam_ResetPort(CAM_HANDLE hCam)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX", hCam), [&]() -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = Forward(Uc::Cam_Reset, hCam))
            return status;
        // The transport is done with the camera; the record stays, so that the handle is still known as a camera's. The
        // diagnostic text of this function is the reset's, whichever call failed.
        return Forward(Uc::Cam_Close.ReportedAs(Uc::Cam_Reset.failureText), hCam);
    });
}

CAM_API_STATUS Cam_AbortPipe(CAM_HANDLE hCam, uint32_t eFlg)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, eFlg=%d", hCam, eFlg),
                      [&] { return Forward(Uc::Cam_AbortPipe, hCam, eFlg); });
}

CAM_API_STATUS Cam_ResetPipe(CAM_HANDLE hCam, uint32_t eFlg)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, eFlg=%d", hCam, eFlg),
                      [&] { return Forward(Uc::Cam_ResetPipe, hCam, eFlg); });
}

CAM_API_STATUS Cam_SaveParameter(CAM_HANDLE hCam, const char *pszFileName)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, pszFileName=%s", hCam, pszFileName), [&] {
        return Forward(Uc::Cam_SaveParameter.ReportedAs("(Cam_SaveParameter) Status %s\n"), hCam, pszFileName);
    });
}

CAM_API_STATUS Cam_LoadParameter(CAM_HANDLE hCam, const char *pszFileName, bool bEnableDPC)
{
    return CameraCall(__func__, hCam,
                      LOG_TEXT("hCam=0x%llX, pszFileName=%s, bEnableDPC=%d", hCam, pszFileName, bEnableDPC), [&] {
                          // Reported under the name of the save: what reads the hook knows one name for both.
                          return Forward(Uc::Cam_LoadParameter.ReportedAs("(Cam_SaveParameter) Status %s\n"), hCam,
                                         pszFileName, bEnableDPC);
                      });
}

CAM_API_STATUS Cam_GetHeartbeat(CAM_HANDLE hCam, bool *, uint32_t *)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX", hCam), [] { return CAM_API_STS_NOT_IMPLEMENTED; });
}

CAM_API_STATUS Cam_SetHeartbeat(CAM_HANDLE hCam, bool bEnable, uint32_t uiHbTimeout)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, bEnable=%d, uiHbTimeout=%d", hCam, bEnable, uiHbTimeout),
                      [] { return CAM_API_STS_NOT_IMPLEMENTED; });
}
