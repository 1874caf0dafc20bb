// What makes fewer pixels of the same picture, or mirrors it.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

// clang-format off
constexpr IntFeature s_binningHorizontal    = {"Value", "", RegMapKX::BinningHorizontal,    "BinningHorizontal",    Streaming::Forbids};
constexpr IntFeature s_binningVertical      = {"Value", "", RegMapKX::BinningVertical,      "BinningVertical",      Streaming::Forbids};
constexpr IntFeature s_decimationHorizontal = {"Value", "", RegMapKX::DecimationHorizontal, "DecimationHorizontal", Streaming::Forbids};
constexpr IntFeature s_decimationVertical   = {"Value", "", RegMapKX::DecimationVertical,   "DecimationVertical",   Streaming::Forbids};
// clang-format on

struct ReverseFeature {
    uint64_t ullBlock;
    const char *node;
};
constexpr ReverseFeature s_reverseX = {RegMapKX::ReverseX, "ReverseX"};
constexpr ReverseFeature s_reverseY = {RegMapKX::ReverseY, "ReverseY"};

// Mirroring is a boolean on most cameras and an enumeration on some: the node refuses the wrong kind as no such node.
CAM_API_STATUS GetReverse(const char *function, const ReverseFeature &feature, CAM_HANDLE hCam, bool *pbValue)
{
    return FeatureCall(
        function, hCam, {pbValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) -> CAM_API_STATUS {
            if (camera.HasRegisterMap())
                return ReadBoolValueUseIIDCReg(hCam, feature.ullBlock, pbValue);
            const CAM_API_STATUS status = GetGenBoolValue(hCam, feature.node, pbValue);
            return status == CAM_API_STS_INVALID_NODE_HANDLE ? GetGenOffOn(hCam, feature.node, pbValue) : status;
        },
        LOG_TEXT("*pbValue=%d", *pbValue));
}

CAM_API_STATUS SetReverse(const char *function, const ReverseFeature &feature, CAM_HANDLE hCam, bool bValue)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, bValue=%d", hCam, bValue),
                       [&](const FeatureCamera &camera) -> CAM_API_STATUS {
                           if (camera.HasRegisterMap())
                               return WriteBoolValueUseIIDCReg(hCam, feature.ullBlock, bValue);
                           const CAM_API_STATUS status = SetGenBoolValue(hCam, feature.node, bValue);
                           return status == CAM_API_STS_INVALID_NODE_HANDLE ? SetGenOffOn(hCam, feature.node, bValue)
                                                                            : status;
                       });
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamBinningHorizontalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_binningHorizontal, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamBinningHorizontal(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_binningHorizontal, hCam, puiValue);
}

CAM_API_STATUS SetCamBinningHorizontal(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetFeature(__func__, s_binningHorizontal, hCam, uiValue);
}

CAM_API_STATUS GetCamBinningVerticalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_binningVertical, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamBinningVertical(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_binningVertical, hCam, puiValue);
}

CAM_API_STATUS SetCamBinningVertical(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetFeature(__func__, s_binningVertical, hCam, uiValue);
}

CAM_API_STATUS GetCamDecimationHorizontalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_decimationHorizontal, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamDecimationHorizontal(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_decimationHorizontal, hCam, puiValue);
}

CAM_API_STATUS SetCamDecimationHorizontal(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetFeature(__func__, s_decimationHorizontal, hCam, uiValue);
}

CAM_API_STATUS GetCamDecimationVerticalMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_decimationVertical, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamDecimationVertical(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_decimationVertical, hCam, puiValue);
}

CAM_API_STATUS SetCamDecimationVertical(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetFeature(__func__, s_decimationVertical, hCam, uiValue);
}

CAM_API_STATUS GetCamReverseX(CAM_HANDLE hCam, bool *pbValue)
{
    return GetReverse(__func__, s_reverseX, hCam, pbValue);
}

CAM_API_STATUS SetCamReverseX(CAM_HANDLE hCam, bool bValue) { return SetReverse(__func__, s_reverseX, hCam, bValue); }

CAM_API_STATUS GetCamReverseY(CAM_HANDLE hCam, bool *pbValue)
{
    return GetReverse(__func__, s_reverseY, hCam, pbValue);
}

CAM_API_STATUS SetCamReverseY(CAM_HANDLE hCam, bool bValue) { return SetReverse(__func__, s_reverseY, hCam, bValue); }
