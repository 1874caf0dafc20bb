#include "u3v/protocol/Acquisition.h"

namespace Orvi::U3v {

void StartAcquisition(Camera &camera, std::uint32_t mode)
{
    WriteRegister(camera.Control(), 0, ControlRegister::acquisitionCommand, mode);
}

void StopAcquisition(Camera &camera)
{
    WriteRegister(camera.Control(), 0, ControlRegister::acquisitionCommand, ControlRegister::acquisitionStop);
}

} // namespace Orvi::U3v
