// Start and end of the library, and what is attached.

#include "system/UNI_Sys.h"

#include "foundation/Version.h"
#include "transport/CallFrame.h"

#include <cstring>

namespace Orvi {

bool s_bInit = false;

bool GetInitFlg() { return s_bInit; }

namespace {

bool s_bUseU3v = false; ///< the USB3 Vision transport is loaded and started
bool s_bUseGev = false; ///< a GigE Vision transport is in use; there is none

bool AreFlagsValid(int32_t iFlags)
{
    return iFlags == SYS_INIT_U3V || iFlags == SYS_INIT_GEV || iFlags == SYS_INIT_ALL;
}

bool StartTransport() { return OrviU3vCamApiDLL_Load() == 0 && _Uc_Sys_Initialize() == CAM_API_STS_SUCCESS; }

/// Ends the log that the configuration file started, a ring by writing it out.
void FinishConfiguredLog()
{
    if (s_configuration.s_bCamOutDebugLog) {
        if (!s_configuration.s_camLogPath.empty() && s_configuration.s_bCamMemoryType)
            Log_OutMemToFile(s_configuration.s_camLogPath.c_str());
        Log_Terminate();
    }
    s_configuration.s_bCamOutDebugLog = false;
}

/// A text of the transport; left empty when it does not fit.
void GetTransportText(uint32_t uiItem, char (&szText)[64])
{
    uint32_t uiSize = 0;
    _Uc_Sys_GetInformation(uiItem, nullptr, &uiSize);
    if (uiSize <= sizeof szText)
        _Uc_Sys_GetInformation(uiItem, szText, &uiSize);
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Sys_Initialize(int32_t iFlags)
{
    // Before the ENTER line: the file may start the log that is to have it. A second call reads the file again.
    try {
        LoadConfiguration();
    } catch (...) {
        return CAM_API_STS_NO_MEMORY;
    }
    bool bThrown = false;
    const CAM_API_STATUS result = FramedCall(__func__, s_nameOnly, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (s_bInit)
            return CAM_API_STS_ALREADY_INITIALIZED;
        SetEnvVariable();
        ClearCameraIndices();
        if (!AreFlagsValid(iFlags))
            return CAM_API_STS_INVALID_PARAMETER;
        try {
            if ((iFlags & SYS_INIT_U3V) != 0) {
                s_bUseU3v = StartTransport();
                if (!s_bUseU3v) {
                    OrviU3vCamApiDLL_Free();
                    if (iFlags != SYS_INIT_ALL) {
                        frame.ExitAs("Sys_Initialize (U3v)", CAM_API_STS_UNSUCCESSFUL, s_nameOnly);
                        return CAM_API_STS_DLL_LOAD_ERR;
                    }
                }
            }
        } catch (...) {
            bThrown = true;
            return frame.ExitLoggedAs(CAM_API_STS_UNSUCCESSFUL, CAM_API_STS_DLL_LOAD_ERR);
        }
        if (!s_bUseU3v && !s_bUseGev)
            return frame.ExitLoggedAs(CAM_API_STS_UNSUCCESSFUL, CAM_API_STS_DLL_LOAD_ERR);
        s_bInit = true;
        return CAM_API_STS_SUCCESS;
    });
    // Only here is the exception gone, whose code may lie in the transport.
    if (bThrown)
        OrviU3vCamApiDLL_Free();
    return result;
}

// Not guarded: ending a library that is not up succeeds.
CAM_API_STATUS Sys_Terminate(void)
{
    const CAM_API_STATUS result = FramedCall(__func__, s_nameOnly, [&](CallFrame &frame) -> CAM_API_STATUS {
        try {
            if (s_bUseU3v)
                Forward(Uc::Sys_Terminate.ReportedAs("(Sys_Terminate) _Uc_Sys_Terminate with Status %s\n"));
            ClearCameraIndices();
            OrviU3vCamApiDLL_Free();
        } catch (...) {
            // The library counts as up still: its flags stay as they were.
            frame.Exit(CAM_API_STS_UNSUCCESSFUL, s_nameOnly);
            ChangeMode_GenicamCache();
            return CAM_API_STS_UNSUCCESSFUL;
        }
        s_bUseU3v = false;
        s_bUseGev = false;
        s_bInit = false;
        ChangeMode_GenicamCache();
        return CAM_API_STS_SUCCESS;
    });
    FinishConfiguredLog();
    return result;
}

CAM_API_STATUS Sys_GetNumOfCameras(uint32_t *puiNum)
{
    return FramedCall(__func__, s_nameOnly, [&](CallFrame &frame) -> CAM_API_STATUS {
        // The line carries success: programs that ask before they initialise would fill their logs with errors.
        if (!GetInitFlg())
            return frame.ExitLoggedAs(CAM_API_STS_SUCCESS, CAM_API_STS_NOT_INITIALIZED);
        if (puiNum == nullptr)
            return frame.WithoutExitLine(CAM_API_STS_INVALID_PARAMETER);
        *puiNum = 0;
        ClearCameraIndices();

        uint32_t uiCount = 0;
        CAM_API_STATUS status = CAM_API_STS_SUCCESS;
        if (s_bUseU3v) {
            status = TranslateTransportStatus(_Uc_Sys_GetNumOfCameras(&uiCount));
            if (status != CAM_API_STS_SUCCESS) {
                DEBUG_PRINT("(UC_Sys_GetNumOfCameras) _Uc_Sys_GetNumOfCameras with Status %s\n",
                            U3vCamApiStatusString(status));
                uiCount = 0;
            }
            if (uiCount > CAMERA_INDEX_MAX)
                return CAM_API_STS_UNSUCCESSFUL;
        }
        for (uint32_t i = 0; i < uiCount; ++i) {
            g_camInfo[i].eCamType = CAM_TYPE_U3V;
            g_camInfo[i].iDevIdx = static_cast<int32_t>(i);
        }
        *puiNum = uiCount;
        return status == CAM_API_STS_SUCCESS ? frame.Exit(status, LOG_TEXT("*puiNum=%d", uiCount)) : status;
    });
}

CAM_API_STATUS Sys_GetInformation(CAM_SYSTEM_INFO *psSysInfo)
{
    return GuardedCall(__func__, s_nameOnly, [&]() -> CAM_API_STATUS {
        if (psSysInfo == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *psSysInfo = {};
        if (s_bUseU3v) {
            GetTransportText(1, psSysInfo->szTransportName);
            GetTransportText(2, psSysInfo->szTransportVersion);
            GetTransportText(3, psSysInfo->szTransportUsbVersion);
        }
        std::memcpy(psSysInfo->szApiVersion, s_apiVersion, sizeof s_apiVersion);
        return CAM_API_STS_SUCCESS;
    });
}
