// Pixel format: on the register road a pair of coding and bits per pixel, on the node road one name, or a pair again.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"

#include <algorithm>
#include <iterator>

namespace Orvi {

namespace {

/// For formats that no register pair stands for.
constexpr uint32_t s_noCoding = 0xFFFFFFFF;

struct PixelFormat {
    CAM_PIXEL_FORMAT ePixelFormat;
    uint32_t uiCoding;
    uint32_t uiBits;
    const char *name;
    const char *otherName;
    const char *codingName; ///< of "PixelCoding"
    const char *otherCodingName;
    const char *bitsName; ///< of "PixelSize"

    bool HasRegisterPair() const { return uiCoding != s_noCoding; }
    bool IsCodedAs(uint32_t uiCodingRead, uint32_t uiBitsRead) const;
};

// A format with one name has it twice.
// clang-format off
constexpr PixelFormat s_formats[] = {
    {CAM_PIXEL_FORMAT_MONO8,     0x00, 8,  "Mono8",     "Mono8",     "Mono",    "Mono",    "Bpp8"},
    {CAM_PIXEL_FORMAT_MONO10,    0x00, 10, "Mono10",    "Mono10",    "Mono",    "Mono",    "Bpp10"},
    {CAM_PIXEL_FORMAT_MONO12,    0x00, 12, "Mono12",    "Mono12",    "Mono",    "Mono",    "Bpp12"},
    {CAM_PIXEL_FORMAT_MONO16,    0x00, 16, "Mono16",    "Mono16",    "Mono",    "Mono",    "Bpp16"},
    {CAM_PIXEL_FORMAT_BAYERGR8,  0x60, 8,  "BayerGR8",  "BayerGR8",  "BayerGR", "BayerGR", "Bpp8"},
    {CAM_PIXEL_FORMAT_BAYERGR10, 0x60, 10, "BayerGR10", "BayerGR10", "BayerGR", "BayerGR", "Bpp10"},
    {CAM_PIXEL_FORMAT_BAYERGR12, 0x60, 12, "BayerGR12", "BayerGR12", "BayerGR", "BayerGR", "Bpp12"},
    {CAM_PIXEL_FORMAT_BAYERRG8,  0x63, 8,  "BayerRG8",  "BayerRG8",  "BayerRG", "BayerRG", "Bpp8"},
    {CAM_PIXEL_FORMAT_BAYERRG10, 0x63, 10, "BayerRG10", "BayerRG10", "BayerRG", "BayerRG", "Bpp10"},
    {CAM_PIXEL_FORMAT_BAYERRG12, 0x63, 12, "BayerRG12", "BayerRG12", "BayerRG", "BayerRG", "Bpp12"},
    {CAM_PIXEL_FORMAT_BAYERGB8,  0x66, 8,  "BayerGB8",  "BayerGB8",  "BayerGB", "BayerGB", "Bpp8"},
    {CAM_PIXEL_FORMAT_BAYERGB10, 0x66, 10, "BayerGB10", "BayerGB10", "BayerGB", "BayerGB", "Bpp10"},
    {CAM_PIXEL_FORMAT_BAYERGB12, 0x66, 12, "BayerGB12", "BayerGB12", "BayerGB", "BayerGB", "Bpp12"},
    {CAM_PIXEL_FORMAT_BAYERBG8,  0x69, 8,  "BayerBG8",  "BayerBG8",  "BayerBG", "BayerBG", "Bpp8"},
    {CAM_PIXEL_FORMAT_BAYERBG10, 0x69, 10, "BayerBG10", "BayerBG10", "BayerBG", "BayerBG", "Bpp10"},
    {CAM_PIXEL_FORMAT_BAYERBG12, 0x69, 12, "BayerBG12", "BayerBG12", "BayerBG", "BayerBG", "Bpp12"},
    {CAM_PIXEL_FORMAT_RGB8,      0x20, 24, "RGB8",      "RGB8Packed", "RGB",    "RGBPacked", "Bpp24"},
    {CAM_PIXEL_FORMAT_BGR8,      0x2A, 24, "BGR8",      "BGR8Packed", "BGR",    "BGRPacked", "Bpp24"},
    {CAM_PIXEL_FORMAT_BGR10,     s_noCoding, 48, "BGR10", "BGR10",    "BGR",    "BGRPacked", "Bpp48"},
    {CAM_PIXEL_FORMAT_BGR12,     s_noCoding, 48, "BGR12", "BGR12",    "BGR",    "BGRPacked", "Bpp48"},
    {CAM_PIXEL_FORMAT_YUV411_8_UYYVYY, 0x42, 12, "YUV411Packed", "YUV411_8_UYYVYY", "YUV411Packed", "YUV411Packed", "Bpp12"},
    {CAM_PIXEL_FORMAT_YUV422_8_UYVY,   0x4A, 16, "YUV422Packed", "YUV422_8_UYVY",   "YUV422Packed", "YUV422Packed", "Bpp16"},
    {CAM_PIXEL_FORMAT_YUV8_UYV,  s_noCoding, 24, "YUV444Packed", "YUV8_UYV",        "YUV444Packed", "YUV444Packed", "Bpp24"},
};
// clang-format on

bool PixelFormat::IsCodedAs(uint32_t uiCodingRead, uint32_t uiBitsRead) const
{
    constexpr uint32_t rgb = 0x20, rgbPacked = 0x22; // cameras answer either
    return uiBits == uiBitsRead && (uiCoding == uiCodingRead || (uiCoding == rgb && uiCodingRead == rgbPacked)) &&
           HasRegisterPair();
}

template <class Matches>
const PixelFormat *FindFormatIf(const Matches &matches)
{
    const auto *format = std::ranges::find_if(s_formats, matches);
    return format == std::end(s_formats) ? nullptr : format;
}

const PixelFormat *FindFormat(uint32_t ePixelFormat)
{
    return FindFormatIf([&](const PixelFormat &format) { return format.ePixelFormat == ePixelFormat; });
}

CAM_API_STATUS ReadRegisterPair(CAM_HANDLE hCam, uint32_t *puiCoding, uint32_t *puiBits)
{
    if (const CAM_API_STATUS status = ReadEnumValueUseIIDCReg(hCam, RegMapKX::PixelCoding, puiCoding))
        return status;
    return ReadEnumValueUseIIDCReg(hCam, RegMapKX::PixelSize, puiBits);
}

CAM_API_STATUS WriteRegisterPair(CAM_HANDLE hCam, const PixelFormat &format)
{
    if (const CAM_API_STATUS status = WriteEnumValueUseIIDCReg(hCam, RegMapKX::PixelCoding, format.uiCoding))
        return status;
    return WriteEnumValueUseIIDCReg(hCam, RegMapKX::PixelSize, format.uiBits);
}

CAM_API_STATUS SetEitherName(CAM_HANDLE hCam, const char *pszNode, const char *pszName, const char *pszOtherName)
{
    if (SetGenEnumStrValue(hCam, pszNode, pszName) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    return SetGenEnumStrValue(hCam, pszNode, pszOtherName);
}

/// Most cameras have one node; some have a pair like the registers.
CAM_API_STATUS SetNodes(CAM_HANDLE hCam, const PixelFormat &format)
{
    if (SetEitherName(hCam, "PixelFormat", format.name, format.otherName) == CAM_API_STS_SUCCESS)
        return CAM_API_STS_SUCCESS;
    if (const CAM_API_STATUS status = SetEitherName(hCam, "PixelCoding", format.codingName, format.otherCodingName))
        return status;
    return SetGenEnumStrValue(hCam, "PixelSize", format.bitsName);
}

CAM_API_STATUS GetPixelFormat(const FeatureCamera &camera, CAM_PIXEL_FORMAT *pePixelFormat)
{
    *pePixelFormat = CAM_PIXEL_FORMAT{};
    CAM_API_STATUS registerStatus = CAM_API_STS_SUCCESS;
    if (camera.HasRegisterMap()) {
        uint32_t uiCoding = 0, uiBits = 0;
        registerStatus = ReadRegisterPair(camera.hCam, &uiCoding, &uiBits);
        const PixelFormat *format =
            FindFormatIf([&](const PixelFormat &row) { return row.IsCodedAs(uiCoding, uiBits); });
        if (registerStatus == CAM_API_STS_SUCCESS && format != nullptr) {
            *pePixelFormat = format->ePixelFormat;
            return CAM_API_STS_SUCCESS;
        }
    }
    EnumSymbol symbol;
    if (const CAM_API_STATUS status = GetGenEnumStrValue(camera.hCam, "PixelFormat", &symbol))
        // A pair that stands for no format here is a success of the register road: the format stays 0.
        return camera.HasRegisterMap() ? registerStatus : status;
    const PixelFormat *format = FindFormatIf(
        [&](const PixelFormat &row) { return symbol.Text() == row.name || symbol.Text() == row.otherName; });
    if (format == nullptr)
        return CAM_API_STS_UNSUCCESSFUL;
    *pePixelFormat = format->ePixelFormat;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS SetRegisterFormat(CAM_HANDLE hCam, const PixelFormat *format)
{
    if (const CAM_API_STATUS status = RefuseWhileStreaming(hCam))
        return status;
    if (format == nullptr || !format->HasRegisterPair())
        return CAM_API_STS_INVALID_PARAMETER;
    const CAM_API_STATUS status = WriteRegisterPair(hCam, *format);
    if (status != CAM_API_STS_SUCCESS)
        SetNodes(hCam, *format); // tried for the camera's sake; the registers' refusal is still the answer
    return status;
}

CAM_API_STATUS SetNodeFormat(CAM_HANDLE hCam, const PixelFormat *format)
{
    return format == nullptr ? CAM_API_STS_INVALID_PARAMETER : SetNodes(hCam, *format);
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamPixelFormat(CAM_HANDLE hCam, CAM_PIXEL_FORMAT *pePixelFormat)
{
    return FeatureCall(
        __func__, hCam, {pePixelFormat}, LOG_TEXT("hCam=0x%llX", hCam),
        [&](const FeatureCamera &camera) { return GetPixelFormat(camera, pePixelFormat); },
        LOG_TEXT("*pePixelFormat=%d", *pePixelFormat));
}

CAM_API_STATUS SetCamPixelFormat(CAM_HANDLE hCam, CAM_PIXEL_FORMAT ePixelFormat)
{
    return FeatureCall(__func__, hCam, {}, LOG_TEXT("hCam=0x%llX, ePixelFormat=%d", hCam, ePixelFormat),
                       [&](const FeatureCamera &camera) {
                           const PixelFormat *format = FindFormat(ePixelFormat);
                           return TakeRoad(
                               camera, [&] { return SetRegisterFormat(hCam, format); },
                               [&] { return SetNodeFormat(hCam, format); });
                       });
}
