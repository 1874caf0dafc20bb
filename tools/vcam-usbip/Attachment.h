#pragma once
// Virtual cameras in this machine's own USB: each sits in a port of vhci_hcd, and when it is unplugged and plugged in
// again by its registers, the kernel sees just that.

#include "ExportedCamera.h"
#include "Vhci.h"

#include <atomic>
#include <functional>
#include <thread>

namespace Orvi::UsbIp {

class Attachment {
  public:
    /// Plugs the camera in; throws what Vhci::Attach() throws. `onEnd` is called on another thread when the camera does
    /// not come back: detached by the kernel's side, or after a fault.
    Attachment(std::shared_ptr<Vcam::VirtualCamera> camera, unsigned deviceId, const Vhci &vhci,
               std::function<void()> onEnd);
    /// Pulls it out and waits until the kernel has noticed.
    ~Attachment();

    bool HasFailed() const { return hasFailed_; }

  private:
    void Run(Vhci::Plug plug);
    bool ServeOnce(Vhci::Plug plug);

    ExportedCamera camera_;
    const unsigned deviceId_;
    const Vhci &vhci_;
    const std::function<void()> onEnd_;
    unsigned port_ = 0; // these of the thread alone while it runs
    std::string busId_;
    std::atomic<bool> hasFailed_ = false;
    std::thread thread_;
};

} // namespace Orvi::UsbIp
