// Finding nodes and reading what they are.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_GetNode(CAM_HANDLE hCam, const char *pszName, CAM_HANDLE *phNode)
{
    const auto enter = [&](LogWriter &write) {
        if (pszName != nullptr)
            write("hCam=0x%llX, pszName=%s", hCam, pszName);
        else
            write("hCam=0x%llX, pszName=NULL", hCam);
    };
    return CameraCall(
        __func__, hCam, enter, [&] { return ForwardToNodeMap(Uc::Nd_GetNode, hCam, pszName, phNode); },
        LOG_TEXT("*phNode=0x%llX", *phNode));
}

CAM_API_STATUS Nd_GetType(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_TYPE *peType)
{
    return CallNode(__func__, hCam, Uc::Nd_GetType, hNode, peType);
}

CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t *puiNum)
{
    return CallNode(__func__, hCam, Uc::Nd_GetNumOfFeatures, hNode, puiNum);
}

CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE hCam, CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phFeature)
{
    return CallNode(__func__, hCam, Uc::Nd_GetFeatureByIndex, hNode, uiIndex + 1,
                    phFeature); // the transport counts from 1
}

CAM_API_STATUS Nd_GetName(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf)
{
    uint32_t uiSize = 64; // what every caller's buffer holds
    return CallNode(__func__, hCam, Uc::Nd_GetName.ReportedAs("(Nd_GetName) Status %s\n"), hNode, pszBuf, &uiSize);
}

CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_ACCESS_MODE *peAccessMode)
{
    return CallNode(__func__, hCam, Uc::Nd_GetAccessMode, hNode, peAccessMode);
}

CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_VISIBILITY *peVisibility)
{
    return CallNode(__func__, hCam, Uc::Nd_GetVisibility, hNode, peVisibility);
}

CAM_API_STATUS Nd_GetCachingMode(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_CACHING_MODE *peCachingMode)
{
    return CallNode(__func__, hCam, Uc::Nd_GetCachingMode, hNode, peCachingMode);
}

CAM_API_STATUS Nd_GetDescription(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
{
    return CallNode(__func__, hCam, Uc::Nd_GetDescription, hNode, pszBuf, puiSize);
}

CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
{
    return CallNode(__func__, hCam, Uc::Nd_GetToolTip, hNode, pszBuf, puiSize);
}

CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE hCam, CAM_HANDLE hNode, CAM_NODE_REPRESENTATION *peRepresentation)
{
    return CallNode(__func__, hCam, Uc::Nd_GetRepresentation, hNode, peRepresentation);
}

CAM_API_STATUS Nd_GetUnit(CAM_HANDLE hCam, CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
{
    return CallNode(__func__, hCam, Uc::Nd_GetUnit, hNode, pszBuf, puiSize);
}
