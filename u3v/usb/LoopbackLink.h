#pragma once
// The link to a virtual device in this process.

#include "u3v/usb/UsbLink.h"
#include "vcam/UsbFunction.h"

#include <atomic>
#include <mutex>

namespace Orvi::U3v {

class LoopbackLink : public UsbLink, private Vcam::UsbFunction::GoneObserver {
  public:
    explicit LoopbackLink(std::shared_ptr<Vcam::UsbFunction> device);
    ~LoopbackLink() override { Close(); }

    const DeviceIdentity &Identity() const override { return identity_; }
    bool HasPipe(Pipe) const override { return true; }
    std::size_t MaxPacketSize(Pipe) const override { return maxPacketSize_; }
    std::size_t MaxBytesInFlight() const override { return SIZE_MAX; }
    TransferStatus Out(std::span<const std::byte> data, Deadline deadline) override;
    std::unique_ptr<BulkIn> NewTransfer(Pipe pipe, BulkIn::Listener &listener) override;
    void SetHalt(Pipe pipe) override;
    void ClearHalt(Pipe pipe) override;
    TransferStatus Reset() override;
    bool IsGone() const override { return isGone_; }
    void Close() override;
    void SetGoneListener(GoneListener *listener) override;

    static DeviceIdentity IdentityOf(const Vcam::UsbIdentity &device);

  private:
    void OnGone() noexcept override;

    const std::shared_ptr<Vcam::UsbFunction> device_;
    const DeviceIdentity identity_;
    const std::size_t maxPacketSize_;
    std::mutex mutex_;
    GoneListener *listener_ = nullptr;
    std::atomic<bool> isGone_ = false;
};

} // namespace Orvi::U3v
