#pragma once
// The kernel's virtual USB host controller, vhci_hcd: its ports and how to plug a device into one.

#include "Socket.h"
#include "vcam/UsbFunction.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvi::UsbIp {

/// Why the kernel takes no device; the program's exit codes tell them apart.
class NoController : public std::runtime_error {
    using runtime_error::runtime_error;
};
class NotPermitted : public std::runtime_error {
    using runtime_error::runtime_error;
};

class Vhci {
  public:
    explicit Vhci(std::filesystem::path folder = "/sys/devices/platform/vhci_hcd.0",
                  std::filesystem::path devices = "/sys/bus/usb/devices")
        : folder_(std::move(folder)), devices_(std::move(devices))
    {
    }

    struct Plug {
        unsigned port;
        Socket socket; ///< the device's end of the connection
    };
    /// Plugs a device into the first free port of its speed. The kernel begins to talk to it at once. Throws
    /// NoController, NotPermitted or std::runtime_error.
    Plug Attach(Vcam::LinkSpeed speed, unsigned deviceId) const;
    /// The same, but into the port where it has been, unless another device is there now.
    Plug AttachAgain(Vcam::LinkSpeed speed, unsigned deviceId, unsigned port, const std::string &busId) const;

    /// What the kernel calls the device in a port, e.g. 2-1.
    std::string BusId(unsigned port) const;
    /// Waits until a device that was pulled out is gone for the kernel, too; false when it is not for long. Its hub may
    /// have other work, and a device that comes back before it has looked would never be seen.
    bool AwaitFree(unsigned port, const std::string &busId) const;

  private:
    struct Port {
        std::string hub;
        unsigned number, state;
        std::string busId;
    };
    std::vector<Port> Ports() const;
    std::optional<Plug> AttachToOneOf(const std::vector<Port> &ports, Vcam::LinkSpeed speed, unsigned deviceId) const;
    bool TryAttach(const Port &port, int descriptor, unsigned deviceId, unsigned speed) const;

    std::filesystem::path folder_, devices_;
};

} // namespace Orvi::UsbIp
