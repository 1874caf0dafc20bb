// The camera as a device: its name, the lock of its transport parameters, its clock.

#include "features/Feature.h"
#include "features/NodeAccess.h"

#include <cstring>

namespace Orvi {

namespace {

constexpr NamedValue s_syncSources[] = {{0, "Off"}, {1, "Bus"}};
constexpr EnumFeature s_synchronization = {"Sync", s_noRegisters, "FrameSynchronization", s_syncSources};

constexpr IntFeature s_locked = {"Value", "", s_noRegisters, "TLParamsLocked"};

constexpr char s_nameNode[] = "UserDefinedName";
constexpr uint32_t s_nameLength = 64;

CAM_API_STATUS FindNameNode(CAM_HANDLE hCam, CAM_HANDLE *phNode)
{
    return ForwardToNodeMap(Uc::Nd_GetNode, hCam, s_nameNode, phNode);
}

/// A name of 64 characters fills the caller's 64 bytes and has no NUL then.
CAM_API_STATUS ReadLongName(CAM_HANDLE hNode, char *pszName, uint32_t *puiSize)
{
    char szName[s_nameLength + 1] = {};
    uint32_t uiSize = sizeof szName;
    if (ForwardToNodeMap(Uc::Nd_GetStrValue, hNode, szName, &uiSize, false, false) != CAM_API_STS_SUCCESS ||
        uiSize != sizeof szName)
        return CAM_API_STS_BUFFER_TOO_SMALL;
    std::memcpy(pszName, szName, s_nameLength);
    *puiSize = s_nameLength;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ReadName(CAM_HANDLE hCam, char *pszName, uint32_t *puiSize)
{
    const uint32_t uiRoom = *puiSize;
    CAM_HANDLE hNode = 0;
    if (const CAM_API_STATUS status = FindNameNode(hCam, &hNode))
        return status;
    const CAM_API_STATUS status = ForwardToNodeMap(Uc::Nd_GetStrValue, hNode, pszName, puiSize, false, false);
    return status == CAM_API_STS_BUFFER_TOO_SMALL && uiRoom == s_nameLength ? ReadLongName(hNode, pszName, puiSize)
                                                                            : status;
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamFrameSynchronization(CAM_HANDLE hCam, CAM_FRAME_SYNCHRONIZATION_TYPE *peSync)
{
    return GetFeature(__func__, s_synchronization, hCam, peSync);
}

CAM_API_STATUS SetCamFrameSynchronization(CAM_HANDLE hCam, CAM_FRAME_SYNCHRONIZATION_TYPE eSync)
{
    return SetFeature(__func__, s_synchronization, hCam, eSync);
}

CAM_API_STATUS GetCamTLParamsLocked(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_locked, hCam, puiValue);
}

// Unlike the other features these two reach the transport themselves, and are logged as if they were camera functions.

CAM_API_STATUS GetCamUserDefinedName(CAM_HANDLE hCam, char *pszName, uint32_t *puiSize)
{
    const auto enter = [&](LogWriter &write) {
        if (puiSize != nullptr)
            write("hCam=0x%llX, *puiSize=%d", hCam, *puiSize);
        else
            write("hCam=0x%llX, *puiSize=NULL", hCam);
    };
    return GuardedCall("Cam_GetUserDefinedName", enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (hCam == 0)
            return CAM_API_STS_INVALID_CAMERA_HANDLE;
        if (pszName == nullptr || puiSize == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        if (const CAM_API_STATUS status = U3vOnly(TypeOfCamera(hCam)))
            return status;
        if (const CAM_API_STATUS status = ReadName(hCam, pszName, puiSize))
            return status;
        return frame.Exit(CAM_API_STS_SUCCESS, LOG_TEXT("*puiSize=%d", *puiSize));
    });
}

CAM_API_STATUS SetCamUserDefinedName(CAM_HANDLE hCam, const char *pszName)
{
    const auto enter = [&](LogWriter &write) {
        if (pszName != nullptr)
            write("hCam=0x%llX, pszName=%s", hCam, pszName);
        else
            write("hCam=0x%llX, pszName=NULL", hCam);
    };
    return CameraCall("Cam_SetUserDefinedName", hCam, enter, [&]() -> CAM_API_STATUS {
        constexpr std::size_t maxScan = 256;
        if (pszName == nullptr || strnlen(pszName, maxScan) >= s_nameLength)
            return CAM_API_STS_INVALID_PARAMETER;
        CAM_HANDLE hNode = 0;
        if (const CAM_API_STATUS status = FindNameNode(hCam, &hNode))
            return status;
        return ForwardToNodeMap(Uc::Nd_SetStrValue, hNode, pszName, true);
    });
}
