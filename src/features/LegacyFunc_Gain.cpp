// Gain, black level, gamma and sharpness.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"
#include "features/RegisterValues.h"

namespace Orvi {

namespace {

// clang-format off
constexpr FloatFeature s_gain       = {"Gain",       RegMapKX::Gain,       "Gain"};
constexpr FloatFeature s_blackLevel = {"BlackLevel", RegMapKX::BlackLevel, "BlackLevel"};
constexpr FloatFeature s_gamma      = {"Gamma",      RegMapKX::Gamma,      "Gamma"};
constexpr IntFeature   s_sharpness  = {"Sharpness", "Sharpness", RegMapKX::Sharpness, "Sharpness"};

constexpr NamedValue s_gainModes[] = {
    {RegMapKX::g_sREGV_CtrlMode_Manual.uiValue, "Off"},
    {RegMapKX::g_sREGV_CtrlMode_Auto.uiValue,   "Continuous", "Auto"},
};
constexpr EnumFeature s_gainAuto = {"GainAuto", RegMapKX::Gain, "GainAuto", s_gainModes, EnumRegister::Mode};
// clang-format on

/// A camera that cannot do it is no failure, and neither is a mode that does not exist: applications rely on it.
CAM_API_STATUS TrySetGainAutoNode(CAM_HANDLE hCam, uint32_t eGainAuto)
{
    if (const NamedValue *mode = FindValue(s_gainModes, eGainAuto)) {
        const CAM_API_STATUS status = SetGenEnumStrValue(hCam, s_gainAuto.node, mode->name);
        if (status == CAM_API_STS_NOT_IMPLEMENTED && mode->otherName != nullptr)
            SetGenEnumStrValue(hCam, s_gainAuto.node, mode->otherName);
    }
    return CAM_API_STS_SUCCESS;
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamGainMinMax(CAM_HANDLE hCam, double *pdGainMin, double *pdGainMax)
{
    return GetFeatureMinMax(__func__, s_gain, hCam, pdGainMin, pdGainMax);
}

CAM_API_STATUS GetCamGain(CAM_HANDLE hCam, double *pdGain)
{
    return GetFeature(__func__, s_gain, hCam, pdGain, SuccessLoggedAs{"GetCamGainMinMax"});
}

CAM_API_STATUS SetCamGain(CAM_HANDLE hCam, double dGain) { return SetFeature(__func__, s_gain, hCam, dGain); }

CAM_API_STATUS GetCamGainAuto(CAM_HANDLE hCam, CAM_GAIN_AUTO_TYPE *peGainAuto)
{
    return GetFeature(__func__, s_gainAuto, hCam, peGainAuto);
}

CAM_API_STATUS SetCamGainAuto(CAM_HANDLE hCam, CAM_GAIN_AUTO_TYPE eGainAuto)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eGainAuto=%d", hCam, eGainAuto),
                       [&](const FeatureCamera &camera) {
                           return TakeRoad(
                               camera, [&] { return WriteModeUseIIDCReg(hCam, s_gainAuto.ullBlock, eGainAuto); },
                               [&] { return TrySetGainAutoNode(hCam, eGainAuto); });
                       });
}

CAM_API_STATUS GetCamBlackLevelMinMax(CAM_HANDLE hCam, double *pdBlackLevelMin, double *pdBlackLevelMax)
{
    return GetFeatureMinMax(__func__, s_blackLevel, hCam, pdBlackLevelMin, pdBlackLevelMax);
}

CAM_API_STATUS GetCamBlackLevel(CAM_HANDLE hCam, double *pdBlackLevel)
{
    return GetFeature(__func__, s_blackLevel, hCam, pdBlackLevel);
}

CAM_API_STATUS SetCamBlackLevel(CAM_HANDLE hCam, double dBlackLevel)
{
    return SetFeature(__func__, s_blackLevel, hCam, dBlackLevel);
}

CAM_API_STATUS GetCamGammaMinMax(CAM_HANDLE hCam, double *pdGammaMin, double *pdGammaMax)
{
    return GetFeatureMinMax(__func__, s_gamma, hCam, pdGammaMin, pdGammaMax);
}

CAM_API_STATUS GetCamGamma(CAM_HANDLE hCam, double *pdGamma) { return GetFeature(__func__, s_gamma, hCam, pdGamma); }

CAM_API_STATUS SetCamGamma(CAM_HANDLE hCam, double dGamma) { return SetFeature(__func__, s_gamma, hCam, dGamma); }

CAM_API_STATUS GetCamSharpnessMinMax(CAM_HANDLE hCam, uint32_t *puiSharpnessMin, uint32_t *puiSharpnessMax)
{
    return GetFeatureMinMax(__func__, s_sharpness, hCam, puiSharpnessMin, puiSharpnessMax);
}

CAM_API_STATUS GetCamSharpness(CAM_HANDLE hCam, uint32_t *puiSharpness)
{
    return GetFeature(__func__, s_sharpness, hCam, puiSharpness);
}

CAM_API_STATUS SetCamSharpness(CAM_HANDLE hCam, uint32_t uiSharpness)
{
    return SetFeature(__func__, s_sharpness, hCam, uiSharpness);
}
