// Features that are numbers.

#include "features/Feature.h"
#include "features/NodeAccess.h"

namespace Orvi {

namespace {

/// Whether the feature is a register here.
template <class Feature>
bool IsRegister(const FeatureCamera &camera, const Feature &feature)
{
    return camera.HasRegisterMap() && feature.ullBlock != s_noRegisters;
}

} // namespace

CAM_API_STATUS RefuseWhileStreaming(CAM_HANDLE hCam)
{
    bool bEnable = false;
    const bool bStreaming = GetCamStreamEnable(hCam, &bEnable) == CAM_API_STS_SUCCESS && bEnable;
    return bStreaming ? CAM_API_STS_NOT_WRITABLE : CAM_API_STS_SUCCESS;
}

CAM_API_STATUS GetFeature(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double *pdValue,
                          SuccessLoggedAs success)
{
    return FeatureCall(
        function, hCam, {pdValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return IsRegister(camera, feature) ? ReadFloatValueUseIIDCReg(hCam, feature.ullBlock, feature.unit, pdValue)
                                               : GetGenFloatValue(hCam, feature.node, pdValue);
        },
        LOG_TEXT("*pd%s=%15.9f", feature.name, *pdValue), success);
}

CAM_API_STATUS GetFeatureMinMax(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double *pdMin,
                                double *pdMax)
{
    return FeatureCall(
        function, hCam, {pdMin, pdMax}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return IsRegister(camera, feature)
                       ? ReadFloatMinMaxUseIIDCReg(hCam, feature.ullBlock, feature.unit, pdMin, pdMax)
                       : GetGenFloatMinMax(hCam, feature.node, pdMin, pdMax);
        },
        LOG_TEXT("*pd%sMin=%15.9f, *pd%sMax=%15.9f", feature.name, *pdMin, feature.name, *pdMax));
}

CAM_API_STATUS SetFeature(const char *function, const FloatFeature &feature, CAM_HANDLE hCam, double dValue)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, d%s=%15.9f", hCam, feature.name, dValue),
                       [&](const FeatureCamera &camera) {
                           return IsRegister(camera, feature)
                                      ? WriteFloatValueUseIIDCReg(hCam, feature.ullBlock, feature.unit, dValue)
                                      : SetGenFloatValue(hCam, feature.node, dValue);
                       });
}

CAM_API_STATUS GetFeature(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t *puiValue)
{
    return FeatureCall(
        function, hCam, {puiValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return IsRegister(camera, feature) ? ReadIntValueUseIIDCReg(hCam, feature.ullBlock, puiValue)
                                               : GetGenIntValue(hCam, feature.node, puiValue);
        },
        LOG_TEXT("*pui%s=%d", feature.name, *puiValue));
}

CAM_API_STATUS GetFeatureMinMax(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t *puiMin,
                                uint32_t *puiMax)
{
    return FeatureCall(
        function, hCam, {puiMin, puiMax}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return IsRegister(camera, feature) ? ReadIntMinMaxUseIIDCReg(hCam, feature.ullBlock, puiMin, puiMax)
                                               : GetGenIntMinMax(hCam, feature.node, puiMin, puiMax);
        },
        LOG_TEXT("*pui%sMin=%d, *pui%sMax=%d", feature.limits, *puiMin, feature.limits, *puiMax));
}

CAM_API_STATUS SetFeature(const char *function, const IntFeature &feature, CAM_HANDLE hCam, uint32_t uiValue)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, ui%s=%d", hCam, feature.name, uiValue),
                       [&](const FeatureCamera &camera) -> CAM_API_STATUS {
                           if (!IsRegister(camera, feature))
                               return SetGenIntValue(hCam, feature.node, uiValue);
                           if (feature.streaming == Streaming::Forbids)
                               if (const CAM_API_STATUS status = RefuseWhileStreaming(hCam))
                                   return status;
                           return WriteIntValueUseIIDCReg(hCam, feature.ullBlock, uiValue, Grid::Ignored);
                       });
}

} // namespace Orvi
