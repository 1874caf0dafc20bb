#pragma once
// The kind of link that a test program's tests run over: MakeLoopbackLink.cpp, or tests/usb/MakeUsbLink.cpp.

#include "u3v/usb/UsbLink.h"
#include "vcam/UsbFunction.h"

#include <memory>

namespace Orvi::Test {

std::unique_ptr<U3v::UsbLink> MakeLink(const std::shared_ptr<Vcam::UsbFunction> &device);

} // namespace Orvi::Test
