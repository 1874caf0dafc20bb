#pragma once
// What the node entries share: from a node handle to its map, and results through the caller's pointers.

#include "u3v/api/ApiCall.h"
#include "u3v/genapi/NodeMap.h"

#include "transport/TransportInterface.h"

namespace Orvi::U3v {

/// Runs body(map, id) on the node of a handle.
template <class Body>
CAM_API_STATUS NodeCall(CAM_HANDLE hNode, Body &&body) noexcept
{
    return ApiCall([&] {
        const NodeRef node = ResolveNode(hNode);
        body(node.camera->Nodes(), node.id);
    });
}

/// *out = (map.*query)(id, arguments...); enumerations of the runtime become those of the public header.
template <class Out, class Result, class... Parameters, class... Arguments>
CAM_API_STATUS NodeQuery(CAM_HANDLE hNode, Out *out,
                         Result (GenApi::NodeMap::*query)(GenApi::NodeId, Parameters...) const,
                         Arguments... arguments) noexcept
{
    return NodeCall(hNode, [&](const GenApi::NodeMap &map, GenApi::NodeId id) {
        Require(out);
        *out = static_cast<Out>((map.*query)(id, arguments...));
    });
}

/// The same for a text.
template <class Result, class... Parameters, class... Arguments>
CAM_API_STATUS NodeText(CAM_HANDLE hNode, char *buffer, uint32_t *size,
                        Result (GenApi::NodeMap::*query)(GenApi::NodeId, Parameters...) const,
                        Arguments... arguments) noexcept
{
    return NodeCall(hNode, [&](const GenApi::NodeMap &map, GenApi::NodeId id) {
        Require(size);
        CopyText((map.*query)(id, arguments...), buffer, size);
    });
}

/// *out = handle of the node that query(map, id) finds.
template <class Query>
CAM_API_STATUS NodeStep(CAM_HANDLE hNode, CAM_HANDLE *out, Query &&query) noexcept
{
    return NodeCall(hNode, [&](const GenApi::NodeMap &map, GenApi::NodeId id) {
        Require(out);
        *out = MakeNodeHandle(NodeHandleParts::Of(hNode).camera, query(map, id));
    });
}

/// Indices of this interface begin at 1, those of the runtime at 0.
inline uint32_t FromOne(uint32_t index)
{
    if (index == 0)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "indices begin at 1");
    return index - 1;
}

constexpr GenApi::ReadOptions Reading(bool verify, bool ignoreCache) { return {verify, ignoreCache}; }
constexpr GenApi::Verify Writing(bool verify) { return verify ? GenApi::Verify::Yes : GenApi::Verify::No; }

} // namespace Orvi::U3v
