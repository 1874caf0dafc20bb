// Digital lines and user outputs.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

constexpr NamedValue s_lines[] = {{0, "Line0"}, {1, "Line1"}, {2, "Line2"}};

constexpr NamedValue s_lineSources[] = {
    {0, "Off"},
    {17, "VD"},
    {32, "UserOutput"},
    {64, "Timer0Active"},
    {99, "AcquisitionActive"},
    {106, "FrameTriggerWait"},
    {107, "FrameActive"},
    {115, "FrameTransferActive", "FrameTransfer"},
    {123, "ExposureActive"},
};

/// Lines that stand in one word. Cameras without registers have them in a node, or not at all.
CAM_API_STATUS GetLines(const char *function, uint64_t ullBlock, const char *pszNode, CAM_HANDLE hCam,
                        uint32_t *puiValue)
{
    return FeatureCall(
        function, hCam, {puiValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return TakeRoad(
                camera, [&] { return ReadLinesUseIIDCReg(hCam, ullBlock, puiValue); },
                [&]() -> CAM_API_STATUS {
                    return pszNode != nullptr ? GetGenIntValue(hCam, pszNode, puiValue)
                                              : CAM_API_STS_INVALID_CAMERA_HANDLE;
                });
        },
        LOG_TEXT("*puiValue=%d", *puiValue));
}

template <class ToNode>
CAM_API_STATUS SetLines(const char *function, uint64_t ullBlock, CAM_HANDLE hCam, uint32_t uiValue,
                        const ToNode &toNode)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, uiValue=%d", hCam, uiValue),
                       [&](const FeatureCamera &camera) {
                           return TakeRoad(
                               camera, [&] { return WriteLinesUseIIDCReg(hCam, ullBlock, uiValue); }, toNode);
                       });
}

/// Only a line that cannot be inverted now and is to be is refused; one that never can is left alone.
CAM_API_STATUS InvertSelectedLine(CAM_HANDLE hCam, bool bInvert)
{
    CAM_HANDLE hNode = 0;
    CAM_NODE_ACCESS_MODE eMode = CAM_NODE_ACCESS_MODE_NI;
    if (const CAM_API_STATUS status = FindGenNode(hCam, "LineInverter", &hNode, &eMode))
        return status;
    switch (eMode) {
    case CAM_NODE_ACCESS_MODE_NI:
        return CAM_API_STS_NOT_IMPLEMENTED;
    case CAM_NODE_ACCESS_MODE_NA:
        return bInvert ? CAM_API_STS_INVALID_PARAMETER : CAM_API_STS_SUCCESS;
    case CAM_NODE_ACCESS_MODE_WO:
    case CAM_NODE_ACCESS_MODE_RW:
        return Nd_SetBoolValue(hCam, hNode, bInvert, true);
    default:
        return CAM_API_STS_SUCCESS;
    }
}

CAM_API_STATUS InvertLines(CAM_HANDLE hCam, uint32_t uiLines)
{
    for (const NamedValue &line : s_lines) {
        if (const CAM_API_STATUS status = SetGenEnumValue(hCam, "LineSelector", line))
            return status;
        if (const CAM_API_STATUS status = InvertSelectedLine(hCam, (uiLines >> line.uiValue & 1) != 0))
            return status;
    }
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS SelectLine(const FeatureCamera &camera, uint32_t eLineSelector)
{
    return camera.HasRegisterMap() ? WriteEnumValueUseIIDCReg(camera.hCam, RegMapKX::LineSelector, eLineSelector)
                                   : SetGenEnumValue(camera.hCam, "LineSelector", s_lines, eLineSelector);
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamLineModeAll(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetLines(__func__, RegMapKX::LineModeAll, nullptr, hCam, puiValue);
}

CAM_API_STATUS GetCamLineInverterAll(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetLines(__func__, RegMapKX::LineInverterAll, nullptr, hCam, puiValue);
}

CAM_API_STATUS SetCamLineInverterAll(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetLines(__func__, RegMapKX::LineInverterAll, hCam, uiValue, [&] { return InvertLines(hCam, uiValue); });
}

CAM_API_STATUS GetCamLineStatusAll(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetLines(__func__, RegMapKX::LineStatusAll, "LineStatusAll", hCam, puiValue);
}

CAM_API_STATUS GetCamUserOutputValueAll(CAM_HANDLE hCam, uint32_t *puiValue)
{
    // The node that is read here is called like this function; the one that is set is "UserOutputValueAll".
    return GetLines(__func__, RegMapKX::UserOutputValueAll, __func__, hCam, puiValue);
}

CAM_API_STATUS SetCamUserOutputValueAll(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetLines(__func__, RegMapKX::UserOutputValueAll, hCam, uiValue,
                    [&] { return SetGenIntValue(hCam, "UserOutputValueAll", uiValue); });
}

CAM_API_STATUS GetCamLineSource(CAM_HANDLE hCam, CAM_LINE_SELECTOR_TYPE eLineSelector,
                                CAM_LINE_SOURCE_TYPE *peLineSource)
{
    return FeatureCall(
        __func__, hCam, {peLineSource}, LOG_TEXT("hCam=0x%llX, eLineSelector=%d", hCam, eLineSelector),
        [&](const FeatureCamera &camera) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectLine(camera, eLineSelector))
                return status;
            return ReadAsEnum(peLineSource, [&](uint32_t *puiLineSource) {
                return TakeRoad(
                    camera, [&] { return ReadEnumValueUseIIDCReg(hCam, RegMapKX::LineSource, puiLineSource); },
                    [&] { return GetGenEnumValue(hCam, "LineSource", s_lineSources, puiLineSource); });
            });
        },
        LOG_TEXT("*peLineSource=%d", *peLineSource));
}

CAM_API_STATUS SetCamLineSource(CAM_HANDLE hCam, CAM_LINE_SELECTOR_TYPE eLineSelector, CAM_LINE_SOURCE_TYPE eLineSource)
{
    return FeatureCall(
        __func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eLineSelector=%d, eLineSource=%d", hCam, eLineSelector, eLineSource),
        [&](const FeatureCamera &camera) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SelectLine(camera, eLineSelector))
                return status;
            return TakeRoad(
                camera, [&] { return WriteEnumValueUseIIDCReg(hCam, RegMapKX::LineSource, eLineSource); },
                [&] { return SetGenEnumValue(hCam, "LineSource", s_lineSources, eLineSource); });
        });
}
