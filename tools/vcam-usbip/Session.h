#pragma once
// One virtual camera on one connection: from the moment a host has it until the connection ends. The host is the
// kernel's vhci_hcd at the other end, or whoever speaks its side of USB/IP.

#include "ControlEndpoint.h"
#include "InPipe.h"
#include "Messages.h"
#include "Replies.h"
#include "Socket.h"

#include <functional>

namespace Orvi::UsbIp {

class Session final : private Vcam::UsbFunction::GoneObserver {
  public:
    /// How it ended.
    enum class End {
        HostLeft,   ///< the other side closed the connection
        DeviceGone, ///< the camera was unplugged
        Stopped,    ///< by Stop()
    };

    /// Sees from now on when the device is unplugged.
    Session(Vcam::UsbFunction &device, Socket socket);
    ~Session() override;

    /// Serves the host until the connection ends. Throws std::runtime_error (ProtocolError among them) when that is due
    /// to a fault. `onConfigured` is called when the host has chosen the device's configuration.
    End Run(const std::function<void()> &onConfigured);
    /// Ends Run(), from any thread.
    void Stop();

  private:
    void OnGone() noexcept override;
    void Serve(const std::function<void()> &onConfigured);
    void Carry(const Submit &submit);
    void CarryControl(const Submit &submit);
    void CarryOut(const Submit &submit, std::span<const std::byte> data);
    void TakeBack(const Unlink &unlink);
    InPipe *Pipe(std::uint32_t endpoint);
    void Fail(std::uint32_t seqnum, UrbStatus status);

    Vcam::UsbFunction &device_;
    const Socket socket_;
    Reader reader_;
    TransferPool pool_;
    Replies replies_;
    ControlEndpoint control_;
    InPipe controlIn_, eventIn_, streamIn_;
    std::mutex outMutex_;
    bool isOutUnderWay_ = false;
    std::atomic<bool> isGone_ = false, isStopped_ = false;
};

} // namespace Orvi::UsbIp
