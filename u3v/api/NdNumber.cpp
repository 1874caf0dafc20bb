// Integer and float nodes.

#include "u3v/api/NdAccess.h"

using namespace Orvi;
using namespace Orvi::U3v;
using GenApi::NodeId;
using GenApi::NodeMap;

// clang-format off
CAM_API_STATUS UC_Nd_GetIntMin(CAM_HANDLE hNode, int64_t *pllMin)
    { return NodeQuery(hNode, pllMin, &NodeMap::IntMin); }
CAM_API_STATUS UC_Nd_GetIntMax(CAM_HANDLE hNode, int64_t *pllMax)
    { return NodeQuery(hNode, pllMax, &NodeMap::IntMax); }
CAM_API_STATUS UC_Nd_GetIntInc(CAM_HANDLE hNode, int64_t *pllInc)
    { return NodeQuery(hNode, pllInc, &NodeMap::IntInc); }
CAM_API_STATUS UC_Nd_GetIntValue(CAM_HANDLE hNode, int64_t *pllValue, bool bVerify, bool bIgnoreCache)
    { return NodeQuery(hNode, pllValue, &NodeMap::GetInt, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetIntValue(CAM_HANDLE hNode, int64_t llValue, bool bVerify)
    { return NodeCall(hNode, [&](NodeMap &map, NodeId id) { map.SetInt(id, llValue, Writing(bVerify)); }); }

CAM_API_STATUS UC_Nd_GetFloatMin(CAM_HANDLE hNode, double *pdMin)
    { return NodeQuery(hNode, pdMin, &NodeMap::FloatMin); }
CAM_API_STATUS UC_Nd_GetFloatMax(CAM_HANDLE hNode, double *pdMax)
    { return NodeQuery(hNode, pdMax, &NodeMap::FloatMax); }
CAM_API_STATUS UC_Nd_GetFloatDisplayNotation(CAM_HANDLE hNode, CAM_NODE_DISPLAY_NOTATION *peNotation)
    { return NodeQuery(hNode, peNotation, &NodeMap::Notation); }
CAM_API_STATUS UC_Nd_GetFloatDisplayPrecision(CAM_HANDLE hNode, int64_t *pllPrecision)
    { return NodeQuery(hNode, pllPrecision, &NodeMap::DisplayPrecision); }
CAM_API_STATUS UC_Nd_GetFloatValue(CAM_HANDLE hNode, double *pdValue, bool bVerify, bool bIgnoreCache)
    { return NodeQuery(hNode, pdValue, &NodeMap::GetFloat, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetFloatValue(CAM_HANDLE hNode, double dValue, bool bVerify)
    { return NodeCall(hNode, [&](NodeMap &map, NodeId id) { map.SetFloat(id, dValue, Writing(bVerify)); }); }
// clang-format on

CAM_API_STATUS UC_Nd_GetFloatHasInc(CAM_HANDLE hNode, bool *pbHasInc)
{
    return NodeCall(hNode, [&](const NodeMap &map, NodeId id) {
        Require(pbHasInc);
        *pbHasInc = map.FloatInc(id).has_value();
    });
}

CAM_API_STATUS UC_Nd_GetFloatInc(CAM_HANDLE hNode, double *pdInc)
{
    return NodeCall(hNode, [&](const NodeMap &map, NodeId id) {
        Require(pdInc);
        const auto inc = map.FloatInc(id);
        if (!inc)
            throw GenApi::Error("[" + std::string(map.Name(id)) + "] has no increment");
        *pdInc = *inc;
    });
}
