// What starts an exposure, and how long after it.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

constexpr uint32_t s_softwareTriggerImpulse = 8;

constexpr NamedValue s_sources[] = {{0x00, "Line0"}, {0x40, "Software", "TriggerSoftware"}};
constexpr EnumFeature s_source = {"TriggerSource", RegMapKX::TriggerSource, "TriggerSource", s_sources};

constexpr NamedValue s_edges[] = {{0, "FallingEdge"}, {1, "RisingEdge"}};
constexpr EnumFeature s_activation = {"TriggerActivation", s_noRegisters, "TriggerActivation", s_edges};

constexpr FloatFeature s_delay = {"TriggerDelay", RegMapKX::TriggerDelay, "TriggerDelay", Unit::Microseconds};

constexpr char s_triggerMode[] = "TriggerMode";

// On cameras without registers the parameter of a burst is all that there is.
constexpr char s_burstCount[] = "AcquisitionBurstFrameCount";

constexpr uint32_t s_timed = 0, s_triggerWidth = 1, s_frameBurst = 6;

CAM_API_STATUS SetSequenceNodes(CAM_HANDLE hCam, uint32_t eTriggerSequence)
{
    if (eTriggerSequence == s_triggerWidth) {
        if (const CAM_API_STATUS status = SetGenEnumStrValue(hCam, "TriggerSelector", "FrameStart"))
            return status;
        return SetGenEnumOrElse(hCam, {"ExposureMode", "TriggerWidth"}, {"TriggerSequence", "TriggerSequence1"});
    }
    if (const CAM_API_STATUS status =
            SetGenEnumOrElse(hCam, {"ExposureMode", "Timed"}, {"TriggerSequence", "TriggerSequence0"}))
        return status;
    return SetGenEnumStrValue(hCam, "TriggerSelector",
                              eTriggerSequence == s_frameBurst ? "FrameBurstStart" : "FrameStart");
}

CAM_API_STATUS GetSequenceNodes(CAM_HANDLE hCam, uint32_t *puiTriggerSequence)
{
    EnumSymbol mode, selector;
    CAM_API_STATUS status = GetGenEnumStrValue(hCam, "ExposureMode", &mode);
    if (status == CAM_API_STS_NOT_IMPLEMENTED)
        status = GetGenEnumStrValue(hCam, "TriggerSequence", &mode);
    if (status != CAM_API_STS_SUCCESS)
        return status;
    if (const CAM_API_STATUS selectorStatus = GetGenEnumStrValue(hCam, "TriggerSelector", &selector))
        return selectorStatus;
    const uint32_t uiTimed = selector.Text() == "FrameBurstStart" ? s_frameBurst : s_timed;
    const NamedValue sequences[] = {
        {uiTimed, "Timed", "TriggerSequence0"},
        {s_triggerWidth, "TriggerWidth", "TriggerSequence1"},
        {s_frameBurst, "TriggerSequence6"},
    };
    const NamedValue *sequence = FindName(sequences, mode.Text());
    if (sequence == nullptr)
        return CAM_API_STS_UNSUCCESSFUL;
    *puiTriggerSequence = sequence->uiValue;
    return CAM_API_STS_SUCCESS;
}

/// A count on some cameras and a measure on others: as the second it is only tried when the first is refused.
CAM_API_STATUS WriteAdditionalParameter(CAM_HANDLE hCam, uint32_t uiValue)
{
    constexpr uint64_t block = RegMapKX::TriggerAdditionalParameter;
    const CAM_API_STATUS status = WriteIntValueUseIIDCReg(hCam, block, uiValue, Grid::Checked);
    if (status != CAM_API_STS_SUCCESS &&
        WriteFloatValueUseIIDCReg(hCam, block, Unit::AsCounted, uiValue) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return status;
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamTriggerMode(CAM_HANDLE hCam, bool *pbTriggerMode)
{
    return FeatureCall(
        __func__, hCam, {pbTriggerMode}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) -> CAM_API_STATUS {
            if (camera.HasRegisterMap()) {
                uint32_t uiMode = 0;
                if (const CAM_API_STATUS status = ReadEnumValueUseIIDCReg(hCam, RegMapKX::TriggerMode, &uiMode))
                    return status;
                *pbTriggerMode = (uiMode & 1) != 0;
                return CAM_API_STS_SUCCESS;
            }
            const CAM_API_STATUS status = GetGenOffOn(hCam, s_triggerMode, pbTriggerMode);
            return status == CAM_API_STS_INVALID_NODE_HANDLE ? GetGenBoolValue(hCam, s_triggerMode, pbTriggerMode)
                                                             : status;
        },
        LOG_TEXT("*pbTriggerMode=%d", *pbTriggerMode));
}

CAM_API_STATUS SetCamTriggerMode(CAM_HANDLE hCam, bool bTriggerMode)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, bTriggerMode=%d", hCam, bTriggerMode),
                       [&](const FeatureCamera &camera) -> CAM_API_STATUS {
                           if (camera.HasRegisterMap())
                               return WriteEnumValueUseIIDCReg(hCam, RegMapKX::TriggerMode, bTriggerMode ? 1 : 0);
                           const CAM_API_STATUS status = SetGenOffOn(hCam, s_triggerMode, bTriggerMode);
                           return status == CAM_API_STS_INVALID_NODE_HANDLE
                                      ? SetGenBoolValue(hCam, s_triggerMode, bTriggerMode)
                                      : status;
                       });
}

CAM_API_STATUS GetCamTriggerSequence(CAM_HANDLE hCam, CAM_TRIGGER_SEQUENCE_TYPE *peTriggerSequence)
{
    return FeatureCall(
        __func__, hCam, {peTriggerSequence}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return ReadAsEnum(peTriggerSequence, [&](uint32_t *puiTriggerSequence) {
                return TakeRoad(
                    camera,
                    [&] { return ReadEnumValueUseIIDCReg(hCam, RegMapKX::TriggerSequence, puiTriggerSequence); },
                    [&] { return GetSequenceNodes(hCam, puiTriggerSequence); });
            });
        },
        LOG_TEXT("*peTriggerSequence=%d", *peTriggerSequence));
}

CAM_API_STATUS SetCamTriggerSequence(CAM_HANDLE hCam, CAM_TRIGGER_SEQUENCE_TYPE eTriggerSequence)
{
    return FeatureCall(
        __func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eTriggerSequence=%d", hCam, eTriggerSequence),
        [&](const FeatureCamera &camera) {
            return TakeRoad(
                camera, [&] { return WriteEnumValueUseIIDCReg(hCam, RegMapKX::TriggerSequence, eTriggerSequence); },
                [&] { return SetSequenceNodes(hCam, eTriggerSequence); });
        });
}

CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE hCam, CAM_TRIGGER_SOURCE_TYPE *peTriggerSource)
{
    return GetFeature(__func__, s_source, hCam, peTriggerSource);
}

CAM_API_STATUS SetCamTriggerSource(CAM_HANDLE hCam, CAM_TRIGGER_SOURCE_TYPE eTriggerSource)
{
    return SetFeature(__func__, s_source, hCam, eTriggerSource);
}

CAM_API_STATUS GetCamTriggerAdditionalParameterMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return FeatureCall(
        __func__, hCam, {puiMin, puiMax}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return TakeRoad(
                camera,
                [&] { return ReadIntMinMaxUseIIDCReg(hCam, RegMapKX::TriggerAdditionalParameter, puiMin, puiMax); },
                [&] { return GetGenIntMinMax(hCam, s_burstCount, puiMin, puiMax); });
        },
        LOG_TEXT("*puiMin=%d, *puiMax=%d", *puiMin, *puiMax));
}

CAM_API_STATUS GetCamTriggerAdditionalParameter(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return FeatureCall(
        __func__, hCam, {puiValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return TakeRoad(
                camera, [&] { return ReadIntValueUseIIDCReg(hCam, RegMapKX::TriggerAdditionalParameter, puiValue); },
                [&] { return GetGenIntValue(hCam, s_burstCount, puiValue); });
        },
        LOG_TEXT("*puiValue=%d", *puiValue));
}

CAM_API_STATUS SetCamTriggerAdditionalParameter(CAM_HANDLE hCam, uint32_t uiValue)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, uiValue=%d", hCam, uiValue),
                       [&](const FeatureCamera &camera) {
                           return TakeRoad(
                               camera, [&] { return WriteAdditionalParameter(hCam, uiValue); },
                               [&] { return SetGenIntValue(hCam, s_burstCount, uiValue); });
                       });
}

CAM_API_STATUS GetCamTriggerDelayMinMax(CAM_HANDLE hCam, double *pdTriggerDelayMin, double *pdTriggerDelayMax)
{
    return GetFeatureMinMax(__func__, s_delay, hCam, pdTriggerDelayMin, pdTriggerDelayMax);
}

CAM_API_STATUS GetCamTriggerDelay(CAM_HANDLE hCam, double *pdTriggerDelay)
{
    return GetFeature(__func__, s_delay, hCam, pdTriggerDelay);
}

CAM_API_STATUS SetCamTriggerDelay(CAM_HANDLE hCam, double dTriggerDelay)
{
    return SetFeature(__func__, s_delay, hCam, dTriggerDelay);
}

CAM_API_STATUS GetCamTriggerActivation(CAM_HANDLE hCam, CAM_TRIGGER_ACTIVATION_TYPE *peTriggerActivation)
{
    return GetFeature(__func__, s_activation, hCam, peTriggerActivation);
}

CAM_API_STATUS SetCamTriggerActivation(CAM_HANDLE hCam, CAM_TRIGGER_ACTIVATION_TYPE eTriggerActivation)
{
    return FramedCall(__func__, LOG_TEXT("hCam=0x%llX, eTriggerActivation=%d", hCam, eTriggerActivation),
                      [&](CallFrame &frame) -> CAM_API_STATUS {
                          // Applications parse this line: its spelling is frozen.
                          if (hCam == 0)
                              return frame.ExitAs("SGetCamTriggerActivation", CAM_API_STS_INVALID_CAMERA_HANDLE,
                                                  s_nameOnly);
                          return SetGenEnumValue(hCam, s_activation.node, s_activation.values, eTriggerActivation);
                      });
}

CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE hCam)
{
    return ExecuteFeature(__func__, {RegMapKX::SoftwareTrigger, s_softwareTriggerImpulse, "TriggerSoftware"}, hCam);
}
