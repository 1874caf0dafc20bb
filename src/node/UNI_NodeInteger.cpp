// Integers.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllMin)
{
    return CallNode(__func__, hCam, Uc::Nd_GetIntMin, hNode, pllMin);
}

CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllMax)
{
    return CallNode(__func__, hCam, Uc::Nd_GetIntMax, hNode, pllMax);
}

CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllInc)
{
    return CallNode(__func__, hCam, Uc::Nd_GetIntInc, hNode, pllInc);
}

CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t llValue, bool bVerify)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, hNode=0x%llX, llValue=0x%llX", hCam, hNode, llValue),
                      [&] { return ForwardToNodeMap(Uc::Nd_SetIntValue, hNode, llValue, bVerify); });
}

CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllValue, bool bVerify, bool bIgnoreCache)
{
    return NodeCall(
        __func__, hCam, hNode,
        [&] { return ForwardToNodeMap(Uc::Nd_GetIntValue, hNode, pllValue, bVerify, bIgnoreCache); },
        LOG_TEXT("*pllValue=0x%llX", *pllValue));
}
