#pragma once
// A node's value as text, whatever the node's type.

#include "OrviCamApi.h"

#include <string>

namespace Orvi::Testing {

/// As many digits as tell a double from all others.
std::string NumberText(double value);

CAM_NODE_TYPE TypeOf(CAM_HANDLE hCam, CAM_HANDLE hNode);

/// Writes by the function of the node's type; a command is executed, whatever the text.
CAM_API_STATUS SetValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const std::string &value);
/// Asks the camera, not the cache. Of a command: whether it is done.
CAM_API_STATUS GetValue(CAM_HANDLE hCam, CAM_HANDLE hNode, std::string &value);

} // namespace Orvi::Testing
