// Hue, saturation, white balance and the colour-correction matrix.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"
#include "features/RegisterValues.h"

#include <iterator>

namespace Orvi {

namespace {

// clang-format off
constexpr FloatFeature s_hue        = {"Hue",        RegMapKX::Hue,        "Hue"};
constexpr FloatFeature s_saturation = {"Saturation", RegMapKX::Saturation, "Saturation"};
// clang-format on

constexpr NamedValue s_ratioSelectors[] = {{1, "Red", "R"}, {2, "Blue", "B"}};
constexpr char s_balanceRatio[] = "BalanceRatio";

constexpr NamedValue s_whiteModes[] = {
    {RegMapKX::g_sREGV_CtrlMode_Manual.uiValue, "Off", "Manual"},
    {RegMapKX::g_sREGV_CtrlMode_AutoOnce.uiValue, "Once", "AutoOnce"},
};
// Read from the node on every camera, although the register could tell too.
constexpr EnumFeature s_whiteAuto = {"BalanceWhiteAuto", s_noRegisters, "BalanceWhiteAuto", s_whiteModes};

constexpr char s_matrix[] = "ColorCorrectionMatrix";

/// Row and column of an element. The diagonal cannot be reached.
constexpr struct {
    const char *row;
    const char *column;
} s_matrixElements[] = {{"R", "G"}, {"R", "B"}, {"G", "R"}, {"G", "B"}, {"B", "R"}, {"B", "G"}};

/// Here the second refusal is the status.
CAM_API_STATUS SelectRatio(CAM_HANDLE hCam, uint32_t eSelector)
{
    const NamedValue *selector = FindValue(s_ratioSelectors, eSelector);
    if (selector == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    if (SetGenEnumStrValue(hCam, "BalanceRatioSelector", selector->name) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return SetGenEnumStrValue(hCam, "BalanceRatioSelector", selector->otherName);
}

CAM_API_STATUS SelectMatrixElement(CAM_HANDLE hCam, uint32_t eType)
{
    if (eType >= std::size(s_matrixElements))
        return CAM_API_STS_INVALID_PARAMETER;
    if (const CAM_API_STATUS status =
            SetGenEnumStrValue(hCam, "ColorCorrectionMatrixSelectorI", s_matrixElements[eType].row))
        return status;
    return SetGenEnumStrValue(hCam, "ColorCorrectionMatrixSelectorJ", s_matrixElements[eType].column);
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamHueMinMax(CAM_HANDLE hCam, double *pdHueMin, double *pdHueMax)
{
    return GetFeatureMinMax(__func__, s_hue, hCam, pdHueMin, pdHueMax);
}

CAM_API_STATUS GetCamHue(CAM_HANDLE hCam, double *pdHue) { return GetFeature(__func__, s_hue, hCam, pdHue); }

CAM_API_STATUS SetCamHue(CAM_HANDLE hCam, double dHue) { return SetFeature(__func__, s_hue, hCam, dHue); }

CAM_API_STATUS GetCamSaturationMinMax(CAM_HANDLE hCam, double *pdSaturationMin, double *pdSaturationMax)
{
    return GetFeatureMinMax(__func__, s_saturation, hCam, pdSaturationMin, pdSaturationMax);
}

CAM_API_STATUS GetCamSaturation(CAM_HANDLE hCam, double *pdSaturation)
{
    return GetFeature(__func__, s_saturation, hCam, pdSaturation);
}

CAM_API_STATUS SetCamSaturation(CAM_HANDLE hCam, double dSaturation)
{
    return SetFeature(__func__, s_saturation, hCam, dSaturation);
}

CAM_API_STATUS GetCamBalanceRatioMinMax(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector,
                                        double *pdBalanceRatioMin, double *pdBalanceRatioMax)
{
    return FeatureCall(
        __func__, hCam, {pdBalanceRatioMin, pdBalanceRatioMax}, LOG_TEXT("hCam=0x%llX, eSelector=%d", hCam, eSelector),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectRatio(hCam, eSelector))
                return status;
            return GetGenFloatMinMax(hCam, s_balanceRatio, pdBalanceRatioMin, pdBalanceRatioMax);
        },
        LOG_TEXT("*pdBalanceRatioMin=%15.9f, *pdBalanceRatioMax=%15.9f", *pdBalanceRatioMin, *pdBalanceRatioMax));
}

CAM_API_STATUS GetCamBalanceRatio(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector, double *pdBalanceRatio)
{
    return FeatureCall(
        __func__, hCam, {pdBalanceRatio}, LOG_TEXT("hCam=0x%llX, eSelector=%d", hCam, eSelector),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectRatio(hCam, eSelector))
                return status;
            return GetGenFloatValue(hCam, s_balanceRatio, pdBalanceRatio);
        },
        LOG_TEXT("*pdBalanceRatio=%15.9f", *pdBalanceRatio));
}

CAM_API_STATUS SetCamBalanceRatio(CAM_HANDLE hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE eSelector, double dBalanceRatio)
{
    return FeatureCall(__func__, hCam, {},
                       LOG_TEXT("hCam=0x%llX, eSelector=%d, dBalanceRatio=%15.9f", hCam, eSelector, dBalanceRatio),
                       [&](const FeatureCamera &) -> CAM_API_STATUS {
                           if (const CAM_API_STATUS status = SelectRatio(hCam, eSelector))
                               return status;
                           return SetGenFloatValue(hCam, s_balanceRatio, dBalanceRatio);
                       });
}

CAM_API_STATUS GetCamBalanceWhiteAuto(CAM_HANDLE hCam, CAM_BALANCE_WHITE_AUTO_TYPE *peBalanceWhiteAuto)
{
    return GetFeature(__func__, s_whiteAuto, hCam, peBalanceWhiteAuto);
}

CAM_API_STATUS SetCamBalanceWhiteAuto(CAM_HANDLE hCam, CAM_BALANCE_WHITE_AUTO_TYPE eBalanceWhiteAuto)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eBalanceWhiteAuto=%d", hCam, eBalanceWhiteAuto),
                       [&](const FeatureCamera &camera) -> CAM_API_STATUS {
                           const NamedValue *mode = FindValue(s_whiteModes, eBalanceWhiteAuto);
                           if (mode == nullptr)
                               return CAM_API_STS_INVALID_PARAMETER;
                           return TakeRoad(
                               camera,
                               [&] { return WriteModeUseIIDCReg(hCam, RegMapKX::WhiteBalance, eBalanceWhiteAuto); },
                               [&] { return SetGenEnumValue(hCam, s_whiteAuto.node, *mode); });
                       });
}

CAM_API_STATUS GetCamColorCorrectionMatrixMinMax(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType,
                                                 double *pdMatrixMin, double *pdMatrixMax)
{
    return FeatureCall(
        __func__, hCam, {pdMatrixMin, pdMatrixMax}, LOG_TEXT("hCam=0x%llX, eType=%d", hCam, eType),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectMatrixElement(hCam, eType))
                return status;
            return GetGenFloatMinMax(hCam, s_matrix, pdMatrixMin, pdMatrixMax);
        },
        LOG_TEXT("*pdMatrixMin=%15.9f, *pdMatrixMax=%15.9f", *pdMatrixMin, *pdMatrixMax));
}

CAM_API_STATUS GetCamColorCorrectionMatrix(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType, double *pdMatrix)
{
    return FeatureCall(
        __func__, hCam, {pdMatrix}, LOG_TEXT("hCam=0x%llX, eType=%d", hCam, eType),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectMatrixElement(hCam, eType))
                return status;
            return GetGenFloatValue(hCam, s_matrix, pdMatrix);
        },
        LOG_TEXT("*pdMatrix=%15.9f", *pdMatrix));
}

CAM_API_STATUS SetCamColorCorrectionMatrix(CAM_HANDLE hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE eType, double dMatrix)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eType=%d, dMatrix=%15.9f", hCam, eType, dMatrix),
                       [&](const FeatureCamera &) -> CAM_API_STATUS {
                           if (const CAM_API_STATUS status = SelectMatrixElement(hCam, eType))
                               return status;
                           return SetGenFloatValue(hCam, s_matrix, dMatrix);
                       });
}
