#pragma once
// The shape of most node functions: the two handles in the ENTER line, one transport call, the GenICam error fetched
// when the node refuses.

#include "transport/CallFrame.h"

namespace Orvi {

/// hCam only names the camera; the transport knows the node by its own handle.
template <class... Parameters, class... Arguments>
CAM_API_STATUS CallNode(const char *name, CAM_HANDLE hCam, const TransportEntry<CAM_HANDLE, Parameters...> &entry,
                        CAM_HANDLE hNode, Arguments... arguments)
{
    return NodeCall(name, hCam, hNode, [&] { return ForwardToNodeMap(entry, hNode, arguments...); });
}

} // namespace Orvi
