#include "u3v/protocol/CameraTable.h"

#include "u3v/protocol/Camera.h"

namespace Orvi::U3v {

CameraTable &Cameras()
{
    static CameraTable cameras;
    return cameras;
}

NodeRef ResolveNode(std::uint64_t hNode)
{
    if (!NodeHandleParts::IsNode(hNode))
        throw StatusError(CAM_API_STS_INVALID_NODE_HANDLE, "not a node handle");
    const NodeHandleParts parts = NodeHandleParts::Of(hNode);
    try {
        return {Cameras().Get(parts.camera), parts.id};
    } catch (const StatusError &) {
        throw StatusError(CAM_API_STS_INVALID_NODE_HANDLE, "node of a camera that is closed");
    }
}

std::uint64_t MakeNodeHandle(std::uint64_t hCam, GenApi::NodeId id) { return NodeHandleParts{hCam, id}.Handle(); }

} // namespace Orvi::U3v
