// Enumerations and their entries.

#include "node/NodeCalls.h"
#include "node/UNI_Node.h"

namespace Orvi {

namespace {

CAM_API_STATUS SetEnumStrValue(const char *name, CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    const auto enter = [&](LogWriter &write) {
        if (pszBuf != nullptr)
            write("hCam=0x%llX, hNode=0x%llX, pszBuf=%s", hCam, hNode, pszBuf);
        else
            write("hCam=0x%llX, hNode=0x%llX, pszBuf=NULL", hCam, hNode);
    };
    return CameraCall(name, hCam, enter,
                      [&] { return ForwardToNodeMap(Uc::Nd_SetEnumStrValue, hNode, pszBuf, bVerify); });
}

} // namespace

CAM_API_STATUS Nd_SetEnumStrValue2(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    return SetEnumStrValue(__func__, hCam, hNode, pszBuf, bVerify);
}

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Nd_GetNumOfEnumEntries(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t *puiNum)
{
    return CallNode(__func__, hCam, Uc::Nd_GetNumOfEnumEntries, hNode, puiNum);
}

CAM_API_STATUS Nd_SetEnumIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t llValue, bool bVerify)
{
    return CallNode(__func__, hCam, Uc::Nd_SetEnumIntValue, hNode, llValue, bVerify);
}

CAM_API_STATUS Nd_GetEnumIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue, bool bVerify, bool bIgnoreCache)
{
    return NodeCall(
        __func__, hCam, hNode,
        [&] { return ForwardToNodeMap(Uc::Nd_GetEnumIntValue, hNode, pllValue, bVerify, bIgnoreCache); },
        LOG_TEXT("*pllValue=0x%llX", *pllValue));
}

CAM_API_STATUS Nd_SetEnumStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    return SetEnumStrValue(__func__, hCam, hNode, pszBuf, bVerify);
}

CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify,
                                  bool bIgnoreCache)
{
    return NodeCall(
        __func__, hCam, hNode,
        [&] { return ForwardToNodeMap(Uc::Nd_GetEnumStrValue, hNode, pszBuf, puiSize, bVerify, bIgnoreCache); },
        LOG_TEXT("pszBuf=%s, *puiSize=%d", pszBuf, *puiSize));
}

CAM_API_STATUS Nd_GetEnumEntryByIndex(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phEntry)
{
    return CallNode(__func__, hCam, Uc::Nd_GetEnumEntryByIndex, hNode, uiIndex + 1,
                    phEntry); // the transport counts from 1
}

CAM_API_STATUS Nd_GetEnumEntryIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue)
{
    return NodeCall(
        __func__, hCam, hNode, [&] { return ForwardToNodeMap(Uc::Nd_GetEnumEntryIntValue, hNode, pllValue); },
        LOG_TEXT("*pllValue=0x%llX", *pllValue));
}

CAM_API_STATUS Nd_GetEnumEntryStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
{
    const auto enter = [&](LogWriter &write) {
        write("hCam=0x%llX, hNode=0x%llX", hCam, hNode);
        if (puiSize != nullptr)
            write("*puiSize=%d", *puiSize);
    };
    return CameraCall(
        __func__, hCam, enter, [&] { return ForwardToNodeMap(Uc::Nd_GetEnumEntryStrValue, hNode, pszBuf, puiSize); },
        LOG_TEXT("pszBuf=%s, *puiSize=%d", pszBuf, *puiSize));
}
