#include "tests/u3v/MakeLink.h"
#include "u3v/usb/LoopbackLink.h"

namespace Orvi::Test {

std::unique_ptr<U3v::UsbLink> MakeLink(const std::shared_ptr<Vcam::UsbFunction> &device)
{
    return std::make_unique<U3v::LoopbackLink>(device);
}

} // namespace Orvi::Test
