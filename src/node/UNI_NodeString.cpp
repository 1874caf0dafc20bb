// Texts. Their ENTER lines leave the node out.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_SetStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    const auto enter = [&](LogWriter &write) {
        if (pszBuf != nullptr)
            write("hCam=0x%llX, pszBuf=%s", hCam, pszBuf);
        else
            write("hCam=0x%llX, pszBuf=NULL", hCam);
    };
    return CameraCall(__func__, hCam, enter,
                      [&] { return ForwardToNodeMap(Uc::Nd_SetStrValue, hNode, pszBuf, bVerify); });
}

CAM_API_STATUS Nd_GetStrValue(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify,
                              bool bIgnoreCache)
{
    const auto enter = [&](LogWriter &write) {
        if (puiSize != nullptr)
            write("hCam=0x%llX, *puiSize=%d", hCam, *puiSize);
        else
            write("hCam=0x%llX, *puiSize=NULL", hCam);
    };
    return CameraCall(
        __func__, hCam, enter,
        [&] { return ForwardToNodeMap(Uc::Nd_GetStrValue, hNode, pszBuf, puiSize, bVerify, bIgnoreCache); },
        LOG_TEXT("pszBuf=%s, *puiSize=%d", pszBuf, *puiSize));
}
