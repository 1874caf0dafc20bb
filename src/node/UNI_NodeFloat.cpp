// Floats.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdMin)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatMin, hNode, pdMin);
}

CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdMax)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatMax, hNode, pdMax);
}

CAM_API_STATUS Nd_GetFloatHasInc(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbHasInc)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatHasInc, hNode, pbHasInc);
}

CAM_API_STATUS Nd_GetFloatInc(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdInc)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatInc, hNode, pdInc);
}

CAM_API_STATUS Nd_GetFloatDisplayNotation(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_DISPLAY_NOTATION *peNotation)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatDisplayNotation, hNode, peNotation);
}

CAM_API_STATUS Nd_GetFloatDisplayPrecision(CAM_HANDLE hCam, CAM_HANDLE hNode, int64_t *pllPrecision)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFloatDisplayPrecision, hNode, pllPrecision);
}

CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE hCam, CAM_HANDLE hNode, double dValue, bool bVerify)
{
    return CameraCall(__func__, hCam, LOG_TEXT("hCam=0x%llX, hNode=0x%llX, dValue=%15.9f", hCam, hNode, dValue),
                      [&] { return ForwardToNodeMap(Uc::Nd_SetFloatValue, hNode, dValue, bVerify); });
}

CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE hCam, CAM_HANDLE hNode, double *pdValue, bool bVerify, bool bIgnoreCache)
{
    return NodeCall(
        __func__, hCam, hNode,
        [&] { return ForwardToNodeMap(Uc::Nd_GetFloatValue, hNode, pdValue, bVerify, bIgnoreCache); },
        LOG_TEXT("*pdValue=%15.9f", *pdValue));
}
