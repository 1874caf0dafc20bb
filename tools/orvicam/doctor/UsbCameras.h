#pragma once
// The USB3 Vision cameras that the kernel sees, whoever may open them.

#include "Machine.h"

#include <string>
#include <vector>

namespace Orvi::Tool {

struct UsbCamera {
    std::string port;    ///< the kernel's name of it, e.g. "2-1.4"
    std::string serial;  ///< may be empty
    std::string product; ///< maker and model
    std::string node;    ///< "/dev/bus/usb/002/005"
    unsigned speed = 0;  ///< Mbit/s
    /// Kernel drivers that hold its interfaces, as "driver at 2-1.4:1.0"; usbfs, which is a program's, not among them.
    std::vector<std::string> drivers;
    bool isInUse = false; ///< a program has claimed an interface

    /// How people call it: the serial number, else the port.
    const std::string &Name() const { return serial.empty() ? port : serial; }
};

std::vector<UsbCamera> FindUsbCameras(const Machine &machine);

} // namespace Orvi::Tool
