// Cameras.

#include "transport/TransportInterface.h"
#include "u3v/api/ApiCall.h"
#include "u3v/core/Log.h"
#include "u3v/emulation/RegisterEmulation.h"
#include "u3v/parameters/Parameters.h"
#include "u3v/protocol/CameraRegistry.h"

using namespace Orvi::U3v;

namespace {

constexpr uint32_t firstNumberItem = static_cast<uint32_t>(InfoItem::LinkSpeed);

void CopyNumber(uint32_t number, void *buffer, uint32_t *size) { CopyBytes(&number, sizeof number, buffer, size); }

Pipe PipeOf(uint32_t flag)
{
    if (flag > CAM_PIPE_STREAM)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "no such pipe");
    return static_cast<Pipe>(flag);
}

// Why a camera cannot be opened is told in words as well: few statuses say what to do.
CameraRegistry::Opened OpenCamera(uint32_t number, const Camera::Options &options)
{
    try {
        return CameraRegistry::Instance().Open(number, options);
    } catch (const StatusError &error) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "opening: %s", error.what());
        SetLastGenICamError(error.what());
        throw;
    }
}

} // namespace

CAM_API_STATUS UC_Cam_GetInformation(CAM_HANDLE hCam, uint32_t uiDevNum, uint32_t uiItem, void *pvBuffer,
                                     uint32_t *puiSize)
{
    return ApiCall([&] {
        Require(puiSize);
        const auto item = static_cast<InfoItem>(uiItem);
        const auto camera = hCam != 0 ? Cameras().Get(hCam) : nullptr;
        const DeviceIdentity identity = camera ? DeviceIdentity() : CameraRegistry::Instance().IdentityOf(uiDevNum);
        if (uiItem >= firstNumberItem)
            CopyNumber(camera ? camera->Number(item) : NumberOf(identity, item), pvBuffer, puiSize);
        else
            CopyText(camera ? camera->Text(item) : TextOf(identity, item), static_cast<char *>(pvBuffer), puiSize);
    });
}

CAM_API_STATUS UC_Cam_Open(uint32_t uiDevNum, void *pvRemovalSignal, CAM_HANDLE *phCam, bool bUseGenICam,
                           void *pvXmlFile)
{
    return ApiCall([&] {
        Require(phCam);
        *phCam = 0;
        Camera::Options options;
        options.removalSignal = pvRemovalSignal;
        options.useGenICam = bUseGenICam;
        options.makeOverlay = MakeRegisterEmulation;
        if (pvXmlFile != nullptr)
            options.xmlFile = static_cast<const char *>(pvXmlFile);
        const CameraRegistry::Opened opened = OpenCamera(uiDevNum, options);
        *phCam = opened.handle;
        if (opened.wasOpen)
            throw StatusError(CAM_API_STS_ALREADY_OPENED, "the camera is open");
    });
}

CAM_API_STATUS UC_Cam_Close(CAM_HANDLE hCam)
{
    return ApiCall([&] { CameraRegistry::Instance().Close(hCam); });
}

CAM_API_STATUS UC_Cam_ReadReg(CAM_HANDLE hCam, uint64_t ullAdrs, void *pvData, uint32_t *puiSizeQuadlet)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pvData);
        Require(puiSizeQuadlet);
        camera->ReadQuadlets(ullAdrs, {static_cast<uint32_t *>(pvData), *puiSizeQuadlet});
    });
}

CAM_API_STATUS UC_Cam_WriteReg(CAM_HANDLE hCam, uint64_t ullAdrs, const void *pvData, uint32_t *puiSizeQuadlet)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pvData);
        Require(puiSizeQuadlet);
        camera->WriteQuadlets(ullAdrs, {static_cast<const uint32_t *>(pvData), *puiSizeQuadlet});
    });
}

CAM_API_STATUS UC_Cam_GetXmlData(CAM_HANDLE hCam, void *pvBuffer, uint64_t *pullSize)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pullSize);
        const std::string &xml = camera->Xml();
        CopyBytes(xml.data(), xml.size(), pvBuffer, pullSize);
    });
}

CAM_API_STATUS UC_Cam_GetParentAdpInfo(CAM_HANDLE hCam, void *, uint32_t *)
{
    // USB host controllers are not described.
    return ApiCall([&] {
        Cameras().Get(hCam);
        throw StatusError(U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE, "no information on host controllers");
    });
}

CAM_API_STATUS UC_Cam_Reset(CAM_HANDLE hCam)
{
    return ApiCall([&] { Cameras().Get(hCam)->Reset(); });
}

CAM_API_STATUS UC_Cam_AbortPipe(CAM_HANDLE hCam, uint32_t eFlg)
{
    return ApiCall([&] { Cameras().Get(hCam)->AbortPipe(PipeOf(eFlg)); });
}

CAM_API_STATUS UC_Cam_ResetPipe(CAM_HANDLE hCam, uint32_t eFlg)
{
    return ApiCall([&] { Cameras().Get(hCam)->ResetPipe(PipeOf(eFlg)); });
}

CAM_API_STATUS UC_Cam_SaveParameter(CAM_HANDLE hCam, const char *pszFileName)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pszFileName);
        SaveParameters(*camera, pszFileName);
    });
}

CAM_API_STATUS UC_Cam_LoadParameter(CAM_HANDLE hCam, const char *pszFileName, bool bEnableDPC)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pszFileName);
        LoadParameters(*camera, pszFileName, bEnableDPC ? DefectTable::Load : DefectTable::Leave);
    });
}
