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
    explicit Vhci(std::filesystem::path folder = "/sys/devices/platform/vhci_hcd.0") : folder_(std::move(folder)) {}

    struct Plug {
        unsigned port;
        Socket socket; ///< the device's end of the connection
    };
    /// Plugs a device into the first free port of its speed. The kernel begins to talk to it at once. Throws
    /// NoController, NotPermitted or std::runtime_error.
    Plug Attach(Vcam::LinkSpeed speed, unsigned deviceId) const;
    /// The same, but into the port where it has been, unless another device is there now.
    Plug AttachAgain(Vcam::LinkSpeed speed, unsigned deviceId, unsigned port) const;

    /// Waits until the kernel has noticed that a device was pulled out of this port; false when it does not for long.
    bool AwaitFree(unsigned port) const;

  private:
    struct Port {
        std::string hub;
        unsigned number, state;
    };
    std::vector<Port> Ports() const;
    std::optional<Plug> AttachToOneOf(const std::vector<Port> &ports, Vcam::LinkSpeed speed, unsigned deviceId) const;
    bool TryAttach(const Port &port, int descriptor, unsigned deviceId, unsigned speed) const;

    std::filesystem::path folder_;
};

} // namespace Orvi::UsbIp
