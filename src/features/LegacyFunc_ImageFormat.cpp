// Image format selector and test pattern.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

constexpr NamedValue s_formatNames[] = {{0, "Format0"}, {1, "Format1"}, {2, "Format2"}};
constexpr EnumFeature s_imageFormatSelector = {"Format",      RegMapKX::ImageFormatSelector, "ImageFormatSelector",
                                               s_formatNames, EnumRegister::Value,           Streaming::Forbids};

// The name is "TestPattern"'s; where there are two, the other one is "TestImageSelector"'s.
constexpr NamedValue s_testPatterns[] = {
    {0, "Off"},
    {1, "Black"},
    {2, "White"},
    {3, "GreyA", "BrightGrey"},
    {4, "GreyB", "DarkGrey"},
    {5, "GreyHorizontalRamp"},
    {6, "GreyScale"},
    {7, "ColorBar"},
    {8, "GreyVerticalRamp"},
};
constexpr char s_testImageSelector[] = "TestImageSelector";
constexpr char s_testPattern[] = "TestPattern";

CAM_API_STATUS SetTestPatternNode(CAM_HANDLE hCam, uint32_t eTestPattern)
{
    const NamedValue *pattern = FindValue(s_testPatterns, eTestPattern);
    if (pattern == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    if (pattern->otherName == nullptr)
        return SetGenEnumStrValue(hCam, s_testImageSelector, pattern->name);
    return SetGenEnumOrElse(hCam, {s_testImageSelector, pattern->otherName}, {s_testPattern, pattern->name});
}

CAM_API_STATUS GetTestPatternNode(CAM_HANDLE hCam, uint32_t *puiTestPattern)
{
    const CAM_API_STATUS status = GetGenEnumValue(hCam, s_testImageSelector, s_testPatterns, puiTestPattern);
    if (status == CAM_API_STS_NOT_IMPLEMENTED &&
        GetGenEnumValue(hCam, s_testPattern, s_testPatterns, puiTestPattern) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return status;
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamImageFormatSelector(CAM_HANDLE hCam, CAM_IMAGE_FORMAT_SELECTOR_TYPE *peFormat)
{
    return GetFeature(__func__, s_imageFormatSelector, hCam, peFormat);
}

CAM_API_STATUS SetCamImageFormatSelector(CAM_HANDLE hCam, CAM_IMAGE_FORMAT_SELECTOR_TYPE eFormat)
{
    return SetFeature(__func__, s_imageFormatSelector, hCam, eFormat);
}

CAM_API_STATUS GetCamTestPattern(CAM_HANDLE hCam, CAM_TEST_PATTERN_TYPE *peTestPattern)
{
    return FeatureCall(
        __func__, hCam, {peTestPattern}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) {
            return ReadAsEnum(peTestPattern, [&](uint32_t *puiTestPattern) {
                return TakeRoad(
                    camera, [&] { return ReadEnumValueUseIIDCReg(hCam, RegMapKX::TestPattern, puiTestPattern); },
                    [&] { return GetTestPatternNode(hCam, puiTestPattern); });
            });
        },
        LOG_TEXT("*peTestPattern=%d", *peTestPattern));
}

CAM_API_STATUS SetCamTestPattern(CAM_HANDLE hCam, CAM_TEST_PATTERN_TYPE eTestPattern)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, eTestPattern=%d", hCam, eTestPattern),
                       [&](const FeatureCamera &camera) {
                           return TakeRoad(
                               camera,
                               [&] { return WriteEnumValueUseIIDCReg(hCam, RegMapKX::TestPattern, eTestPattern); },
                               [&] { return SetTestPatternNode(hCam, eTestPattern); });
                       });
}
