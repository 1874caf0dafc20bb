// Exposure time and who decides on it.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"
#include "features/RegisterValues.h"

namespace Orvi {

namespace {

constexpr FloatFeature s_exposureTime = {"ExposureTime", RegMapKX::ExposureTime, "ExposureTime", Unit::Microseconds};

constexpr uint32_t s_noSpecify = RegMapKX::g_sREGV_CtrlMode_NoSpecify.uiValue;

// Called so by "ExposureAuto", and by "ExposureTimeControl" on cameras without it.
constexpr NamedValue s_controlModes[] = {
    {s_noSpecify, "NoSpecify"}, // only ever read
    {RegMapKX::g_sREGV_CtrlMode_Manual.uiValue, "Off", "Manual"},
    {RegMapKX::g_sREGV_CtrlMode_Auto.uiValue, "Continuous", "Auto"},
};

CAM_API_STATUS GetControlNode(CAM_HANDLE hCam, uint32_t *puiControl)
{
    const CAM_API_STATUS status = GetGenEnumValue(hCam, "ExposureAuto", s_controlModes, puiControl);
    return status == CAM_API_STS_NOT_IMPLEMENTED
               ? GetGenEnumValue(hCam, "ExposureTimeControl", s_controlModes, puiControl)
               : status;
}

CAM_API_STATUS SetControlNode(CAM_HANDLE hCam, uint32_t eControl)
{
    const NamedValue *mode = FindValue(s_controlModes, eControl);
    if (mode == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    if (mode->uiValue == s_noSpecify)
        return CAM_API_STS_NOT_AVAILABLE;
    return SetGenEnumOrElse(hCam, {"ExposureAuto", mode->name}, {"ExposureTimeControl", mode->otherName});
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamExposureTimeControl(CAM_HANDLE hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE *peExposureTimeControl)
{
    return FeatureCall(
        __func__, hCam, {peExposureTimeControl}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return ReadAsEnum(peExposureTimeControl, [&](uint32_t *puiControl) {
                return TakeRoad(
                    camera, [&] { return ReadModeUseIIDCReg(hCam, s_exposureTime.ullBlock, puiControl); },
                    [&] { return GetControlNode(hCam, puiControl); });
            });
        },
        LOG_TEXT("*peExposureTimeControl=%d", *peExposureTimeControl));
}

CAM_API_STATUS SetCamExposureTimeControl(CAM_HANDLE hCam, CAM_EXPOSURE_TIME_CONTROL_TYPE eExposureTimeControl)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eExposureTimeControl=%d", hCam, eExposureTimeControl),
                       [&](const FeatureCamera &camera) {
                           return TakeRoad(
                               camera,
                               [&] { return WriteModeUseIIDCReg(hCam, s_exposureTime.ullBlock, eExposureTimeControl); },
                               [&] { return SetControlNode(hCam, eExposureTimeControl); });
                       });
}

CAM_API_STATUS GetCamExposureTimeMinMax(CAM_HANDLE hCam, double *pdExposureTimeMin, double *pdExposureTimeMax)
{
    return GetFeatureMinMax(__func__, s_exposureTime, hCam, pdExposureTimeMin, pdExposureTimeMax);
}

CAM_API_STATUS GetCamExposureTime(CAM_HANDLE hCam, double *pdExposureTime)
{
    return GetFeature(__func__, s_exposureTime, hCam, pdExposureTime);
}

CAM_API_STATUS SetCamExposureTime(CAM_HANDLE hCam, double dExposureTime)
{
    return SetFeature(__func__, s_exposureTime, hCam, dExposureTime);
}
