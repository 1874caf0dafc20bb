#pragma once
// Which devices are attached.

#include "u3v/usb/UsbLink.h"

#include <memory>
#include <vector>

namespace Orvi::U3v {

/// Real devices by bus path, then virtual ones. ORVI_TRANSPORT, a comma-separated list of link kinds ("usb",
/// "virtual"), restricts the kinds looked for.
std::vector<std::shared_ptr<UsbDevice>> EnumerateDevices();

} // namespace Orvi::U3v
