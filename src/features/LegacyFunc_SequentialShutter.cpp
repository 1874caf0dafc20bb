// The sequential shutter, a list of exposures that is run through image by image: nodes only.

#include "features/Feature.h"
#include "features/NodeAccess.h"

namespace Orvi {

namespace {

// clang-format off
constexpr BoolFeature s_enable      = {"Enable", "SequentialShutterEnable"};
constexpr IntFeature  s_terminateAt = {"Value", "", s_noRegisters, "SequentialShutterTerminateAt"};
constexpr IntFeature  s_index       = {"Index", "", s_noRegisters, "SequentialShutterIndex"};
constexpr IntFeature  s_entry       = {"Entry", "", s_noRegisters, "SequentialShutterEntry"};
// clang-format on

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamSequentialShutterEnable(CAM_HANDLE hCam, bool *pbEnable)
{
    return GetFeature(__func__, s_enable, hCam, pbEnable);
}

CAM_API_STATUS SetCamSequentialShutterEnable(CAM_HANDLE hCam, bool bEnable)
{
    return SetFeature(__func__, s_enable, hCam, bEnable);
}

CAM_API_STATUS GetCamSequentialShutterTerminateAtMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_terminateAt, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamSequentialShutterTerminateAt(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetFeature(__func__, s_terminateAt, hCam, puiValue);
}

CAM_API_STATUS SetCamSequentialShutterTerminateAt(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetFeature(__func__, s_terminateAt, hCam, uiValue);
}

CAM_API_STATUS GetCamSequentialShutterIndexMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_index, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamSequentialShutterEntryMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetFeatureMinMax(__func__, s_entry, hCam, puiMin, puiMax);
}

CAM_API_STATUS GetCamSequentialShutterEntry(CAM_HANDLE hCam, uint32_t uiIndex, uint32_t *puiEntry)
{
    return FeatureCall(
        __func__, hCam, {puiEntry}, LOG_TEXT("hCam=0x%llX, uiIndex=%d", hCam, uiIndex),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = SetGenIntValue(hCam, s_index.node, uiIndex))
                return status;
            return GetGenIntValue(hCam, s_entry.node, puiEntry);
        },
        LOG_TEXT("*puiEntry=%d", *puiEntry));
}

CAM_API_STATUS SetCamSequentialShutterEntry(CAM_HANDLE hCam, uint32_t uiIndex, uint32_t uiEntry)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, uiIndex=%d, uiEntry=%d", hCam, uiIndex, uiEntry),
                       [&](const FeatureCamera &) -> CAM_API_STATUS {
                           if (const CAM_API_STATUS status = SetGenIntValue(hCam, s_index.node, uiIndex))
                               return status;
                           return SetGenIntValue(hCam, s_entry.node, uiEntry);
                       });
}
