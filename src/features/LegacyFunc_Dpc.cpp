// Defective-pixel correction: nodes only.

#include "features/Feature.h"
#include "features/NodeAccess.h"

namespace Orvi {

namespace {

constexpr BoolFeature s_enable = {"Enable", "DPCEnable"};
constexpr IntFeature s_number = {"Number", "Number", s_noRegisters, "DPCNumber"};

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamDpcEnable(CAM_HANDLE hCam, bool *pbEnable)
{
    return GetFeature(__func__, s_enable, hCam, pbEnable);
}

CAM_API_STATUS SetCamDpcEnable(CAM_HANDLE hCam, bool bEnable) { return SetFeature(__func__, s_enable, hCam, bEnable); }

CAM_API_STATUS GetCamDpcNumber(CAM_HANDLE hCam, uint32_t *puiNumber)
{
    return GetFeature(__func__, s_number, hCam, puiNumber);
}

CAM_API_STATUS SetCamDpcNumber(CAM_HANDLE hCam, uint32_t uiNumber)
{
    return SetFeature(__func__, s_number, hCam, uiNumber);
}

CAM_API_STATUS GetCamDpcPosition(CAM_HANDLE hCam, uint32_t uiDpcIndex, uint32_t *puiEntryX, uint32_t *puiEntryY)
{
    return FeatureCall(
        __func__, hCam, {puiEntryX, puiEntryY}, LOG_TEXT("hCam=0x%llX, uiDpcIndex=%d", hCam, uiDpcIndex),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, "DPCIndex", uiDpcIndex))
                return status;
            uint32_t uiEntryX = 0;
            if (const CAM_API_STATUS status = GetGenIntValue(hCam, "DPCEntryX", &uiEntryX))
                return status;
            if (const CAM_API_STATUS status = GetGenIntValue(hCam, "DPCEntryY", puiEntryY))
                return status;
            *puiEntryX = uiEntryX;
            return CAM_API_STS_SUCCESS;
        },
        LOG_TEXT("*puiEntryX=%d, *puiEntryY=%d", *puiEntryX, *puiEntryY));
}

CAM_API_STATUS SetCamDpcPosition(CAM_HANDLE hCam, uint32_t uiDpcIndex, uint32_t uiEntryX, uint32_t uiEntryY)
{
    return FeatureCall(
        __func__, hCam, {},
        LOG_TEXT("hCam=0x%llX, uiDpcIndex=%d, uiEntryX=%d, uiEntryY=%d", hCam, uiDpcIndex, uiEntryX, uiEntryY),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            // Writing selects through the look-up table's index, reading through "DPCIndex".
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, "LUTIndex", uiDpcIndex))
                return status;
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, "DPCEntryX", uiEntryX))
                return status;
            return SetGenIntValue(hCam, "DPCEntryY", uiEntryY);
        });
}
