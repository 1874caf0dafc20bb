// The look-up table: nodes only.

#include "features/Feature.h"
#include "features/NodeAccess.h"

namespace Orvi {

namespace {

constexpr BoolFeature s_enable = {"Enable", "LUTEnable"};

constexpr char s_lutIndex[] = "LUTIndex";
// Cameras have the one or the other.
constexpr char s_lutValue[] = "LUTValue";
constexpr char s_lutEntry[] = "LUTEntry";

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamLutEnable(CAM_HANDLE hCam, bool *pbEnable)
{
    return GetFeature(__func__, s_enable, hCam, pbEnable);
}

CAM_API_STATUS SetCamLutEnable(CAM_HANDLE hCam, bool bEnable) { return SetFeature(__func__, s_enable, hCam, bEnable); }

CAM_API_STATUS GetCamLutValue(CAM_HANDLE hCam, uint32_t uiLutIndex, uint32_t *puiLutValue)
{
    return FeatureCall(
        __func__, hCam, {puiLutValue}, LOG_TEXT("hCam=0x%llX, uiLutIndex=%d", hCam, uiLutIndex),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, s_lutIndex, uiLutIndex))
                return status;
            const CAM_API_STATUS status = GetGenIntValue(hCam, s_lutValue, puiLutValue);
            if (status != CAM_API_STS_SUCCESS && GetGenIntValue(hCam, s_lutEntry, puiLutValue) == CAM_API_STS_SUCCESS)
                return CAM_API_STS_SUCCESS;
            return status;
        },
        LOG_TEXT("*puiLutValue=%d", *puiLutValue));
}

CAM_API_STATUS SetCamLutValue(CAM_HANDLE hCam, uint32_t uiLutIndex, uint32_t uiLutValue)
{
    return FeatureCall(
        __func__, hCam, {}, LOG_TEXT("hCam=0x%llX, uiLutIndex=%d, uiLutValue=%d", hCam, uiLutIndex, uiLutValue),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, s_lutIndex, uiLutIndex))
                return status;
            const CAM_API_STATUS status = SetGenIntValue(hCam, s_lutValue, uiLutValue);
            if (status != CAM_API_STS_SUCCESS && SetGenIntValue(hCam, s_lutEntry, uiLutValue) == CAM_API_STS_SUCCESS)
                return CAM_API_STS_SUCCESS;
            return status;
        });
}
