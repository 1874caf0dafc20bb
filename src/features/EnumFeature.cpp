// Features that are a choice, those that are on or off, and commands.

#include "features/Feature.h"
#include "features/NodeAccess.h"

#include <algorithm>

namespace Orvi {

const NamedValue *FindValue(NamedValues values, uint32_t uiValue)
{
    const auto row = std::ranges::find(values, uiValue, &NamedValue::uiValue);
    return row == values.end() ? nullptr : &*row;
}

const NamedValue *FindName(NamedValues values, std::string_view name)
{
    const auto row = std::ranges::find_if(values, [&](const NamedValue &value) {
        return value.name == name || (value.otherName != nullptr && value.otherName == name);
    });
    return row == values.end() ? nullptr : &*row;
}

CAM_API_STATUS GetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, NamedValues values, uint32_t *puiValue)
{
    EnumSymbol symbol;
    if (const CAM_API_STATUS status = GetGenEnumStrValue(hCam, pszNode, &symbol))
        return status;
    const NamedValue *value = FindName(values, symbol.Text());
    if (value == nullptr)
        return CAM_API_STS_UNSUCCESSFUL;
    *puiValue = value->uiValue;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS SetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, const NamedValue &value)
{
    const CAM_API_STATUS status = SetGenEnumStrValue(hCam, pszNode, value.name);
    if (status != CAM_API_STS_SUCCESS && value.otherName != nullptr &&
        SetGenEnumStrValue(hCam, pszNode, value.otherName) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return status;
}

CAM_API_STATUS SetGenEnumValue(CAM_HANDLE hCam, const char *pszNode, NamedValues values, uint32_t uiValue)
{
    const NamedValue *value = FindValue(values, uiValue);
    return value == nullptr ? CAM_API_STS_INVALID_PARAMETER : SetGenEnumValue(hCam, pszNode, *value);
}

CAM_API_STATUS SetGenEnumOrElse(CAM_HANDLE hCam, const NodeSymbol &first, const NodeSymbol &second)
{
    const CAM_API_STATUS status = SetGenEnumStrValue(hCam, first.node, first.symbol);
    if (status == CAM_API_STS_NOT_IMPLEMENTED &&
        SetGenEnumStrValue(hCam, second.node, second.symbol) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return status;
}

CAM_API_STATUS GetFeature(const char *function, const EnumFeature &feature, CAM_HANDLE hCam, uint32_t *peValue)
{
    const auto fromNode = [&] { return GetGenEnumValue(hCam, feature.node, feature.values, peValue); };
    const auto fromRegister = [&] {
        return feature.word == EnumRegister::Mode ? ReadModeUseIIDCReg(hCam, feature.ullBlock, peValue)
                                                  : ReadEnumValueUseIIDCReg(hCam, feature.ullBlock, peValue);
    };
    return FeatureCall(
        function, hCam, {peValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return feature.ullBlock == s_noRegisters ? fromNode() : TakeRoad(camera, fromRegister, fromNode);
        },
        LOG_TEXT("*pe%s=%d", feature.name, *peValue));
}

CAM_API_STATUS SetFeature(const char *function, const EnumFeature &feature, CAM_HANDLE hCam, uint32_t eValue)
{
    const auto toNode = [&] { return SetGenEnumValue(hCam, feature.node, feature.values, eValue); };
    const auto toRegister = [&]() -> CAM_API_STATUS {
        if (feature.streaming == Streaming::Forbids)
            if (const CAM_API_STATUS status = RefuseWhileStreaming(hCam))
                return status;
        return feature.word == EnumRegister::Mode ? WriteModeUseIIDCReg(hCam, feature.ullBlock, eValue)
                                                  : WriteEnumValueUseIIDCReg(hCam, feature.ullBlock, eValue);
    };
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, e%s=%d", hCam, feature.name, eValue),
                       [&](const FeatureCamera &camera) {
                           return feature.ullBlock == s_noRegisters ? toNode() : TakeRoad(camera, toRegister, toNode);
                       });
}

CAM_API_STATUS GetFeature(const char *function, const BoolFeature &feature, CAM_HANDLE hCam, bool *pbValue)
{
    return FeatureCall(
        function, hCam, {pbValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &) { return GetGenBoolValue(hCam, feature.node, pbValue); },
        LOG_TEXT("*pb%s=%d", feature.name, *pbValue));
}

CAM_API_STATUS SetFeature(const char *function, const BoolFeature &feature, CAM_HANDLE hCam, bool bValue)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, b%s=%d", hCam, feature.name, bValue),
                       [&](const FeatureCamera &) { return SetGenBoolValue(hCam, feature.node, bValue); });
}

CAM_API_STATUS ExecuteFeature(const char *function, const CommandFeature &feature, CAM_HANDLE hCam)
{
    constexpr unsigned maxPolls = 50;
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX", hCam), [&](const FeatureCamera &camera) {
        return TakeRoad(
            camera, [&] { return WriteEnumValueUseIIDCReg(hCam, feature.ullBlock, feature.uiValue); },
            [&] { return ExecuteGenCommand(hCam, feature.node, maxPolls); });
    });
}

} // namespace Orvi
