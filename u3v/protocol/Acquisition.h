#pragma once
// Starts and stops a camera's acquisition.

#include "u3v/protocol/Camera.h"

namespace Orvi::U3v {

/// `mode` is a value of the acquisition command register. Throw StatusError.
void StartAcquisition(Camera &camera, std::uint32_t mode);
void StopAcquisition(Camera &camera);

} // namespace Orvi::U3v
