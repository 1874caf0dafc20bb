#pragma once
// Control registers for cameras that have none: their blocks are made of the camera's nodes, so that everything that
// reads and writes blocks works with any USB3 Vision camera. docs/other-cameras.md tells what becomes what.

#include "u3v/protocol/Camera.h"

#include <memory>

namespace Orvi::U3v {

/// The registers for a camera that does not answer at the map's place; null for one that does, for one that is open
/// without its description, and when ORVI_REGISTER_EMULATION is 0.
std::unique_ptr<RegisterOverlay> MakeRegisterEmulation(Camera &camera);

} // namespace Orvi::U3v
