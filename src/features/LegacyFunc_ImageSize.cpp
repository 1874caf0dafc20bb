// Sensor size, image size and region of interest.

#include "features/Feature.h"
#include "features/ImageSize.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

/// A size that is one register, read as it stands.
struct SizeFeature {
    const char *name;
    unsigned word; ///< of the image-size block
    const char *node;
};

// clang-format off
constexpr SizeFeature s_sensorWidth  = {"SensorWidth",  7,  "SensorWidth"};
constexpr SizeFeature s_sensorHeight = {"SensorHeight", 12, "SensorHeight"};
constexpr SizeFeature s_width        = {"Value",        14, "Width"};
constexpr SizeFeature s_height       = {"Value",        16, "Height"};
constexpr SizeFeature s_offsetX      = {"Value",        13, "OffsetX"};
constexpr SizeFeature s_offsetY      = {"Value",        15, "OffsetY"};
// clang-format on

/// The register first; when that fails, the node.
CAM_API_STATUS GetSize(const char *function, const SizeFeature &feature, CAM_HANDLE hCam, uint32_t *puiValue)
{
    const auto fromNode = [&] { return GetGenIntValue(hCam, feature.node, puiValue); };
    const auto fromRegister = [&]() -> CAM_API_STATUS {
        uint32_t uiValue = 0;
        if (ReadWord(hCam, RegMapKX::ImageSize + 4 * feature.word, &uiValue) != CAM_API_STS_SUCCESS)
            return fromNode();
        *puiValue = uiValue;
        return CAM_API_STS_SUCCESS;
    };
    return FeatureCall(
        function, hCam, {puiValue}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) { return TakeRoad(camera, fromRegister, fromNode); },
        LOG_TEXT("*pui%s=%d", feature.name, *puiValue));
}

CAM_API_STATUS GetSizeMinMax(const char *function, const SizeFeature &feature, IIDC_IMAGE_SIZE_TYPE eType,
                             CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc)
{
    const auto fromRegister = [&]() -> CAM_API_STATUS {
        ImageSizeLimits limits = {};
        if (const CAM_API_STATUS status = ReadImageSizeLimitsIIDCReg(hCam, eType, &limits))
            return status;
        *puiMin = limits.uiMin;
        *puiMax = limits.uiMax;
        *puiInc = limits.uiInc;
        return CAM_API_STS_SUCCESS;
    };
    const auto fromNode = [&] { return GetGenIntMinMaxInc(hCam, feature.node, puiMin, puiMax, puiInc); };
    return FeatureCall(
        function, hCam, {puiMin, puiMax, puiInc}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) { return TakeRoad(camera, fromRegister, fromNode); },
        LOG_TEXT("*puiMin=%d, *puiMax=%d, *puiInc=%d", *puiMin, *puiMax, *puiInc));
}

CAM_API_STATUS SetSize(const char *function, const SizeFeature &feature, IIDC_IMAGE_SIZE_TYPE eType, CAM_HANDLE hCam,
                       uint32_t uiValue)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, uiValue=%d", hCam, uiValue),
                       [&](const FeatureCamera &camera) {
                           return camera.HasRegisterMap() ? WriteImageSizeIIDCReg(hCam, eType, uiValue)
                                                          : SetGenIntValue(hCam, feature.node, uiValue);
                       });
}

/// One direction of a region of interest.
struct Extent {
    uint32_t uiSize, uiOffset;
};

struct ExtentSetters {
    CAM_API_STATUS (*setSize)(CAM_HANDLE, uint32_t);
    CAM_API_STATUS (*setOffset)(CAM_HANDLE, uint32_t);
};

/// Writes what differs, in the order that keeps offset and size together on the sensor at every step.
CAM_API_STATUS SetExtent(CAM_HANDLE hCam, const ExtentSetters &setters, const Extent &present, const Extent &wanted)
{
    const auto setOffset = [&]() -> CAM_API_STATUS {
        return wanted.uiOffset == present.uiOffset ? CAM_API_STS_SUCCESS : setters.setOffset(hCam, wanted.uiOffset);
    };
    const auto setSize = [&]() -> CAM_API_STATUS {
        return wanted.uiSize == present.uiSize ? CAM_API_STS_SUCCESS : setters.setSize(hCam, wanted.uiSize);
    };
    const bool bGrows = wanted.uiSize > present.uiSize;
    if (const CAM_API_STATUS status = bGrows ? setOffset() : setSize())
        return status;
    return bGrows ? setSize() : setOffset();
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamSensorWidth(CAM_HANDLE hCam, uint32_t *puiSensorWidth)
{
    return GetSize(__func__, s_sensorWidth, hCam, puiSensorWidth);
}

CAM_API_STATUS GetCamSensorHeight(CAM_HANDLE hCam, uint32_t *puiSensorHeight)
{
    return GetSize(__func__, s_sensorHeight, hCam, puiSensorHeight);
}

CAM_API_STATUS GetCamWidth(CAM_HANDLE hCam, uint32_t *puiValue) { return GetSize(__func__, s_width, hCam, puiValue); }

CAM_API_STATUS GetCamHeight(CAM_HANDLE hCam, uint32_t *puiValue) { return GetSize(__func__, s_height, hCam, puiValue); }

CAM_API_STATUS GetCamOffsetX(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetSize(__func__, s_offsetX, hCam, puiValue);
}

CAM_API_STATUS GetCamOffsetY(CAM_HANDLE hCam, uint32_t *puiValue)
{
    return GetSize(__func__, s_offsetY, hCam, puiValue);
}

CAM_API_STATUS GetCamWidthMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc)
{
    return GetSizeMinMax(__func__, s_width, IIDC_IMAGE_SIZE_WIDTH, hCam, puiMin, puiMax, puiInc);
}

CAM_API_STATUS GetCamHeightMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc)
{
    return GetSizeMinMax(__func__, s_height, IIDC_IMAGE_SIZE_HEIGHT, hCam, puiMin, puiMax, puiInc);
}

CAM_API_STATUS GetCamOffsetXMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc)
{
    return GetSizeMinMax(__func__, s_offsetX, IIDC_IMAGE_SIZE_OFFSET_X, hCam, puiMin, puiMax, puiInc);
}

CAM_API_STATUS GetCamOffsetYMinMax(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax, uint32_t *puiInc)
{
    return GetSizeMinMax(__func__, s_offsetY, IIDC_IMAGE_SIZE_OFFSET_Y, hCam, puiMin, puiMax, puiInc);
}

CAM_API_STATUS SetCamWidth(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetSize(__func__, s_width, IIDC_IMAGE_SIZE_WIDTH, hCam, uiValue);
}

CAM_API_STATUS SetCamHeight(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetSize(__func__, s_height, IIDC_IMAGE_SIZE_HEIGHT, hCam, uiValue);
}

CAM_API_STATUS SetCamOffsetX(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetSize(__func__, s_offsetX, IIDC_IMAGE_SIZE_OFFSET_X, hCam, uiValue);
}

CAM_API_STATUS SetCamOffsetY(CAM_HANDLE hCam, uint32_t uiValue)
{
    return SetSize(__func__, s_offsetY, IIDC_IMAGE_SIZE_OFFSET_Y, hCam, uiValue);
}

CAM_API_STATUS GetCamRoi(CAM_HANDLE hCam, uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiOffsetX,
                         uint32_t *puiOffsetY)
{
    return FeatureCall(
        __func__, hCam, {puiWidth, puiHeight, puiOffsetX, puiOffsetY}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &) -> CAM_API_STATUS {
            uint32_t uiWidth = 0, uiHeight = 0, uiOffsetX = 0, uiOffsetY = 0;
            if (const CAM_API_STATUS status = GetCamWidth(hCam, &uiWidth))
                return status;
            if (const CAM_API_STATUS status = GetCamHeight(hCam, &uiHeight))
                return status;
            if (const CAM_API_STATUS status = GetCamOffsetX(hCam, &uiOffsetX))
                return status;
            if (const CAM_API_STATUS status = GetCamOffsetY(hCam, &uiOffsetY))
                return status;
            *puiWidth = uiWidth;
            *puiHeight = uiHeight;
            *puiOffsetX = uiOffsetX;
            *puiOffsetY = uiOffsetY;
            return CAM_API_STS_SUCCESS;
        },
        // Applications parse this line: its spelling is frozen.
        LOG_TEXT("*puiWidtht=%d, *puiHeight=%d, *puiOffsetX=%d, *puiOffsetY=%d", *puiWidth, *puiHeight, *puiOffsetX,
                 *puiOffsetY));
}

CAM_API_STATUS SetCamRoi(CAM_HANDLE hCam, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiOffsetX, uint32_t uiOffsetY)
{
    return FeatureCall(__func__, hCam, {},
                       LOG_TEXT("hCam=0x%llX, uiWidth=%d, uiHeight=%d, uiOffsetX=%d, uiOffsetY=%d", hCam, uiWidth,
                                uiHeight, uiOffsetX, uiOffsetY),
                       [&](const FeatureCamera &) -> CAM_API_STATUS {
                           Extent columns = {}, lines = {};
                           if (const CAM_API_STATUS status =
                                   GetCamRoi(hCam, &columns.uiSize, &lines.uiSize, &columns.uiOffset, &lines.uiOffset))
                               return status;
                           if (const CAM_API_STATUS status =
                                   SetExtent(hCam, {SetCamWidth, SetCamOffsetX}, columns, {uiWidth, uiOffsetX}))
                               return status;
                           return SetExtent(hCam, {SetCamHeight, SetCamOffsetY}, lines, {uiHeight, uiOffsetY});
                       });
}
