// Finding nodes, and their attributes.

#include "u3v/api/NdAccess.h"

using namespace Orvi;
using namespace Orvi::U3v;
using GenApi::NodeId;
using GenApi::NodeMap;

// Attributes cross the interface as numbers: both sides count alike.
static_assert(CAM_NODE_TYPE_PORT == static_cast<CAM_NODE_TYPE>(GenApi::NodeType::Port));
static_assert(CAM_NODE_ACCESS_MODE_RW == static_cast<CAM_NODE_ACCESS_MODE>(GenApi::AccessMode::ReadWrite));
static_assert(CAM_NODE_VISIBILITY_INVISIBLE == static_cast<CAM_NODE_VISIBILITY>(GenApi::Visibility::Invisible));
static_assert(CAM_NODE_CACHING_MODE_WRITE_AROUND ==
              static_cast<CAM_NODE_CACHING_MODE>(GenApi::CachingMode::WriteAround));
static_assert(CAM_NODE_REPRESENTATION_UNDEFINED ==
              static_cast<CAM_NODE_REPRESENTATION>(GenApi::Representation::Undefined));
static_assert(CAM_NODE_DISPLAY_NOTATION_SCIENTIFIC ==
              static_cast<CAM_NODE_DISPLAY_NOTATION>(GenApi::DisplayNotation::Scientific));

CAM_API_STATUS UC_Nd_GetNode(CAM_HANDLE hCam, const char *pszName, CAM_HANDLE *phNode)
{
    return ApiCall([&] {
        const auto camera = Cameras().Get(hCam);
        Require(pszName);
        Require(phNode);
        const auto id = camera->Nodes().Find(pszName);
        // A feature that a camera lacks is no failure of a node: callers go on with its other name.
        if (!id)
            throw StatusError(CAM_API_STS_NOT_IMPLEMENTED, std::string("the camera has no node ") + pszName);
        *phNode = MakeNodeHandle(hCam, *id);
    });
}

// clang-format off
CAM_API_STATUS UC_Nd_GetType(CAM_HANDLE hNode, CAM_NODE_TYPE *peType)
    { return NodeQuery(hNode, peType, &NodeMap::Type); }
CAM_API_STATUS UC_Nd_GetName(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::Name); }
CAM_API_STATUS UC_Nd_GetAccessMode(CAM_HANDLE hNode, CAM_NODE_ACCESS_MODE *peAccessMode)
    { return NodeQuery(hNode, peAccessMode, &NodeMap::Access); }
CAM_API_STATUS UC_Nd_GetVisibility(CAM_HANDLE hNode, CAM_NODE_VISIBILITY *peVisibility)
    { return NodeQuery(hNode, peVisibility, &NodeMap::NodeVisibility); }
CAM_API_STATUS UC_Nd_GetCachingMode(CAM_HANDLE hNode, CAM_NODE_CACHING_MODE *peCachingMode)
    { return NodeQuery(hNode, peCachingMode, &NodeMap::Caching); }
CAM_API_STATUS UC_Nd_GetDescription(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::Description); }
CAM_API_STATUS UC_Nd_GetToolTip(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::ToolTip); }
CAM_API_STATUS UC_Nd_GetRepresentation(CAM_HANDLE hNode, CAM_NODE_REPRESENTATION *peRepresentation)
    { return NodeQuery(hNode, peRepresentation, &NodeMap::NodeRepresentation); }
CAM_API_STATUS UC_Nd_GetUnit(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::Unit); }
// clang-format on

CAM_API_STATUS UC_Nd_GetNumOfFeatures(CAM_HANDLE hNode, uint32_t *puiNum)
{
    return NodeCall(hNode, [&](const NodeMap &map, NodeId id) {
        Require(puiNum);
        *puiNum = static_cast<uint32_t>(map.Features(id).size());
    });
}

CAM_API_STATUS UC_Nd_GetFeatureByIndex(CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phFeature)
{
    return NodeStep(hNode, phFeature, [&](const NodeMap &map, NodeId id) { return map.Feature(id, FromOne(uiIndex)); });
}
