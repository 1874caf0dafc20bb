// Identity of cameras, by index or by handle.

#include "transport/CallFrame.h"

#include <cstddef>
#include <cstring>
#include <string>

static_assert(sizeof(CAM_INFO) == 2044 && offsetof(CAM_INFO, uiLinkSpeed) == 460);
static_assert(sizeof(CAM_U3V_INFO_EX) == 4104);

namespace Orvi {

namespace {

enum InformationItem : uint32_t {
    ITEM_MANUFACTURER = 1,
    ITEM_MODEL_NAME = 2,
    ITEM_FAMILY_NAME = 3,
    ITEM_DEVICE_VERSION = 4,
    ITEM_MANUFACTURER_INFO = 5,
    ITEM_SERIAL_NUMBER = 6,
    ITEM_USER_DEFINED_NAME = 7,
    ITEM_LINK_SPEED = 0x1012,
    ITEM_U3V_VERSION = 0x1013,
    ITEM_MAX_TRANSFER_SIZE = 0x1014,
};

bool HoldsU3vCamera(uint32_t uiCamIdx)
{
    return CheckCameraIndex(uiCamIdx) == CAM_API_STS_SUCCESS && g_camInfo[uiCamIdx].eCamType == CAM_TYPE_U3V;
}

/// Asks the transport for the items of one camera.
struct InformationQuery {
    CAM_HANDLE hCam; ///< 0 when asking by index
    uint32_t uiDevNum;

    InformationQuery(CAM_HANDLE hCamera, uint32_t uiCamIdx)
        : hCam(hCamera), uiDevNum(static_cast<uint32_t>(g_camInfo[uiCamIdx].iDevIdx) + 1)
    {
    }

    CAM_API_STATUS Get(InformationItem item, void *pvBuffer, uint32_t *puiSize) const
    {
        return Forward(Uc::Cam_GetInformation, hCam, uiDevNum, item, pvBuffer, puiSize);
    }

    CAM_API_STATUS Get(InformationItem item, char (&szText)[64]) const
    {
        uint32_t uiSize = sizeof szText;
        return Get(item, szText, &uiSize);
    }

    CAM_API_STATUS Get(InformationItem item, uint32_t &uiNumber) const
    {
        uint32_t uiSize = sizeof uiNumber;
        return Get(item, &uiNumber, &uiSize);
    }

    /// A name of 64 characters does not fit with its NUL: it fills the field, which then has none.
    CAM_API_STATUS GetUserDefinedName(char (&szName)[64]) const
    {
        const CAM_API_STATUS status = Get(ITEM_USER_DEFINED_NAME, szName);
        if (status != CAM_API_STS_BUFFER_TOO_SMALL)
            return status;
        char szLongName[sizeof szName + 1] = {};
        uint32_t uiSize = 0;
        if (Get(ITEM_USER_DEFINED_NAME, nullptr, &uiSize) != CAM_API_STS_SUCCESS || uiSize != sizeof szLongName)
            return CAM_API_STS_BUFFER_TOO_SMALL;
        if (const CAM_API_STATUS again = Get(ITEM_USER_DEFINED_NAME, szLongName, &uiSize))
            return again;
        std::memcpy(szName, szLongName, sizeof szName);
        return CAM_API_STS_SUCCESS;
    }
};

CAM_API_STATUS FillInformation(const InformationQuery &query, CAM_INFO &info)
{
    info.eCamType = CAM_TYPE_U3V;
    const struct {
        InformationItem item;
        char (&szText)[64];
    } texts[] = {
        {ITEM_MANUFACTURER, info.szManufacturer},
        {ITEM_MODEL_NAME, info.szModelName},
        {ITEM_SERIAL_NUMBER, info.szSerialNumber},
        {ITEM_USER_DEFINED_NAME, info.szUserDefinedName},
        {ITEM_FAMILY_NAME, info.szFamilyName},
        {ITEM_DEVICE_VERSION, info.szDeviceVersion},
        {ITEM_MANUFACTURER_INFO, info.szManufacturerInfo},
    };
    for (const auto &text : texts) {
        const CAM_API_STATUS status = text.item == ITEM_USER_DEFINED_NAME ? query.GetUserDefinedName(text.szText)
                                                                          : query.Get(text.item, text.szText);
        if (status != CAM_API_STS_SUCCESS)
            return status;
    }
    query.Get(ITEM_LINK_SPEED, info.uiLinkSpeed); // a camera that does not tell is good all the same
    return CAM_API_STS_SUCCESS;
}

void LogText(const char *pszLabel, const char (&szText)[64])
{
    LogWriter line;
    line.Append(pszLabel);
    line.Append({szText, strnlen(szText, sizeof szText)});
    line.Append("\n");
    _Uni_WriteLog2(CAM_LOG_LEVEL_DEBUG, std::string(line.Text()).c_str());
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Cam_GetInformation(CAM_HANDLE hCam, uint32_t uiCamIdx, CAM_INFO *psCamInfo)
{
    return FramedCall(__func__, s_nameOnly, [&]() -> CAM_API_STATUS {
        // The record comes first: a null one is refused, and any other is cleared, also before initialisation.
        if (psCamInfo == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *psCamInfo = {};
        if (!GetInitFlg())
            return CAM_API_STS_NOT_INITIALIZED;
        if (hCam != 0) {
            if (const CAM_API_STATUS status = GetCamIndexFromCamHandle(hCam, &uiCamIdx))
                return status;
        }
        if (!HoldsU3vCamera(uiCamIdx))
            return CAM_API_STS_INVALID_PARAMETER;
        if (const CAM_API_STATUS status = FillInformation({hCam, uiCamIdx}, *psCamInfo))
            return status;
        if (g_bUniLogInit) {
            LogText("  Manufacturer:", psCamInfo->szManufacturer);
            LogText("  ModelName:", psCamInfo->szModelName);
            LogText("  SerialNumber:", psCamInfo->szSerialNumber);
        }
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Cam_GetU3vInformationEx(CAM_HANDLE hCam, uint32_t uiCamIdx, CAM_U3V_INFO_EX *psU3vInfo)
{
    return FramedCall(__func__, s_nameOnly, [&]() -> CAM_API_STATUS {
        *psU3vInfo = {};
        if (!GetInitFlg())
            return CAM_API_STS_NOT_INITIALIZED;
        if (!HoldsU3vCamera(uiCamIdx))
            return CAM_API_STS_INVALID_PARAMETER;
        const InformationQuery query(hCam,
                                     uiCamIdx); // a handle that the library does not know is the transport's matter
        if (const CAM_API_STATUS status = query.Get(ITEM_U3V_VERSION, psU3vInfo->uiU3vVersion))
            return status;
        return query.Get(ITEM_MAX_TRANSFER_SIZE, psU3vInfo->uiMaxTransferSize);
    });
}
