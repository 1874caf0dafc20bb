#pragma once
// Whether the system has the memory for a transfer of some size.

#include "u3v/usb/UsbLink.h"

namespace Orvi::U3v {

/// Posts a transfer on a pipe whose device has nothing to send, and takes it back.
bool HasMemoryFor(UsbLink &link, Pipe pipe, std::size_t size);

} // namespace Orvi::U3v
