#pragma once
// From camera and node handles to cameras.

#include "u3v/core/Handles.h"
#include "u3v/genapi/NodeTypes.h"

#include <cstdint>
#include <memory>

namespace Orvi::U3v {

class Camera;

using CameraTable = HandleTable<Camera, HandleKind::Camera, CAM_API_STS_INVALID_CAMERA_HANDLE>;
CameraTable &Cameras();

/// A node of an open camera.
struct NodeRef {
    std::shared_ptr<Camera> camera;
    GenApi::NodeId id;
};

/// Throws StatusError(0x8) for anything but a node handle of a camera that is open. Whether the camera has a node of
/// that number is the node map's to say.
NodeRef ResolveNode(std::uint64_t hNode);

std::uint64_t MakeNodeHandle(std::uint64_t hCam, GenApi::NodeId id);

} // namespace Orvi::U3v
