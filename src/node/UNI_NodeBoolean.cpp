// Booleans.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE hCam, CAM_HANDLE hNode, bool bValue, bool bVerify)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, hNode=0x%llX, bValue=%d", hCam, hNode, bValue),
                      [&] { return ForwardToNodeMap(Uc::Nd_SetBoolValue, hNode, bValue, bVerify); });
}

CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbValue, bool bVerify, bool bIgnoreCache)
{
    return NodeCall(
        __func__, hCam, hNode,
        [&] { return ForwardToNodeMap(Uc::Nd_GetBoolValue, hNode, pbValue, bVerify, bIgnoreCache); },
        LOG_TEXT("*pbValue=%d", *pbValue));
}
