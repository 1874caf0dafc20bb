#pragma once
// libusb-1.0, and what a refusal of it means for callers.

#include "u3v/core/Status.h"
#include "u3v/usb/UsbLink.h"

#include <libusb.h>

#include <string>

namespace Orvi::U3v {

/// "LIBUSB_ERROR_ACCESS (EACCES, permission denied)".
std::string TextOfError(int error);

CAM_API_STATUS StatusOfError(int error);
TransferStatus TransferStatusOfError(int error);
TransferStatus TransferStatusOf(libusb_transfer_status status);

/// "libusb 1.0.26".
std::string LibusbVersion();

} // namespace Orvi::U3v
