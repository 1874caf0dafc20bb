// Boolean, command, string and enumeration nodes.

#include "u3v/api/NdAccess.h"

using namespace Orvi;
using namespace Orvi::U3v;
using GenApi::NodeId;
using GenApi::NodeMap;

// clang-format off
CAM_API_STATUS UC_Nd_GetBoolValue(CAM_HANDLE hNode, bool *pbValue, bool bVerify, bool bIgnoreCache)
    { return NodeQuery(hNode, pbValue, &NodeMap::GetBool, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetBoolValue(CAM_HANDLE hNode, bool bValue, bool bVerify)
    { return NodeCall(hNode, [&](NodeMap &map, NodeId id) { map.SetBool(id, bValue, Writing(bVerify)); }); }

CAM_API_STATUS UC_Nd_CmdExecute(CAM_HANDLE hNode, bool bVerify)
    { return NodeCall(hNode, [&](NodeMap &map, NodeId id) { map.Execute(id, Writing(bVerify)); }); }
CAM_API_STATUS UC_Nd_GetCmdIsDone(CAM_HANDLE hNode, bool *pbDone, bool bVerify)
    { return NodeQuery(hNode, pbDone, &NodeMap::IsDone, Reading(bVerify, true)); }

CAM_API_STATUS UC_Nd_GetStrValue(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify, bool bIgnoreCache)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::GetString, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetStrValue(CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    return NodeCall(hNode, [&](NodeMap &map, NodeId id) { Require(pszBuf); map.SetString(id, pszBuf, Writing(bVerify)); });
}

CAM_API_STATUS UC_Nd_GetNumOfEnumEntries(CAM_HANDLE hNode, uint32_t *puiNum)
    { return NodeQuery(hNode, puiNum, &NodeMap::EntryCount); }
CAM_API_STATUS UC_Nd_GetEnumIntValue(CAM_HANDLE hNode, int64_t *pllValue, bool bVerify, bool bIgnoreCache)
    { return NodeQuery(hNode, pllValue, &NodeMap::GetEnumInt, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetEnumIntValue(CAM_HANDLE hNode, int64_t llValue, bool bVerify)
    { return NodeCall(hNode, [&](NodeMap &map, NodeId id) { map.SetEnumInt(id, llValue, Writing(bVerify)); }); }
CAM_API_STATUS UC_Nd_GetEnumStrValue(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize, bool bVerify, bool bIgnoreCache)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::GetEnumText, Reading(bVerify, bIgnoreCache)); }
CAM_API_STATUS UC_Nd_SetEnumStrValue(CAM_HANDLE hNode, const char *pszBuf, bool bVerify)
{
    return NodeCall(hNode, [&](NodeMap &map, NodeId id) { Require(pszBuf); map.SetEnumText(id, pszBuf, Writing(bVerify)); });
}

CAM_API_STATUS UC_Nd_GetEnumEntryIntValue(CAM_HANDLE hNode, int64_t *pllValue)
    { return NodeQuery(hNode, pllValue, &NodeMap::EntryInt); }
CAM_API_STATUS UC_Nd_GetEnumEntryStrValue(CAM_HANDLE hNode, char *pszBuf, uint32_t *puiSize)
    { return NodeText(hNode, pszBuf, puiSize, &NodeMap::EntryText); }
// clang-format on

CAM_API_STATUS UC_Nd_GetEnumEntryByIndex(CAM_HANDLE hNode, uint32_t uiIndex, CAM_HANDLE *phEntry)
{
    return NodeStep(hNode, phEntry, [&](const NodeMap &map, NodeId id) { return map.Entry(id, FromOne(uiIndex)); });
}
