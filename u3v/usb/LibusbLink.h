#pragma once
// The link to a camera on a real bus.

#include "u3v/usb/LibusbHandle.h"
#include "u3v/usb/LibusbTransfer.h"
#include "u3v/usb/UsbDescriptors.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace Orvi::U3v {

class LibusbLink : public UsbLink, private LibusbContext::User, private TransferOwner, private BulkIn::Listener {
  public:
    /// Claims the camera's interfaces. Throws StatusError.
    LibusbLink(LibusbContext &context, std::unique_ptr<LibusbHandle> handle, const CameraInterfaces &interfaces,
               DeviceIdentity identity);
    ~LibusbLink() override { Close(); }

    const DeviceIdentity &Identity() const override { return identity_; }
    bool HasPipe(Pipe pipe) const override { return InterfaceOf(pipe).in != 0; }
    std::size_t MaxPacketSize(Pipe pipe) const override { return InterfaceOf(pipe).maxPacketSize; }
    std::size_t MaxBytesInFlight() const override;
    TransferStatus Out(std::span<const std::byte> data, Deadline deadline) override;
    std::unique_ptr<BulkIn> NewTransfer(Pipe pipe, BulkIn::Listener &listener) override;
    void SetHalt(Pipe pipe) override;
    void ClearHalt(Pipe pipe) override;
    TransferStatus Reset() override;
    bool IsGone() const override { return state_ == State::Gone; }
    void Close() override;
    void SetGoneListener(GoneListener *listener) override;

  private:
    enum class State : std::uint8_t { Open, Resetting, Gone };

    const BulkInterface &InterfaceOf(Pipe pipe) const { return interfaces_[static_cast<std::size_t>(pipe)]; }
    void Add(LibusbTransfer &transfer) override;
    void Remove(LibusbTransfer &transfer) noexcept override;
    TransferStatus BeginSubmit() noexcept override;
    void EndSubmit() noexcept override;
    TransferStatus EndTransfer(TransferStatus status) noexcept override;
    void OnDeviceLeft() noexcept override { MarkGone(); }
    void OnDone(BulkIn &) noexcept override;

    /// Calls libusb, unless the device is gone, and takes notice when it turns out to be.
    template <class Call>
    int WithHandle(Call call);
    using EndpointCall = int (*)(libusb_device_handle *, unsigned char);
    void ForEachEndpoint(Pipe pipe, const char *what, EndpointCall call);
    void EndUse() noexcept;
    void MarkGone() noexcept;
    /// Takes all transfers back. Whoever changed the state before can wait for uses_ afterwards.
    void CancelAll() noexcept;

    LibusbContext &context_;
    std::mutex closeMutex_; // of handle_
    std::unique_ptr<LibusbHandle> handle_;
    libusb_device_handle *const rawHandle_; // used only between BeginSubmit() and EndTransfer(), and the like
    const DeviceIdentity identity_;
    const std::array<BulkInterface, 3> interfaces_; // by Pipe

    std::atomic<State> state_ = State::Open;
    std::mutex useMutex_;
    std::condition_variable unused_;
    std::size_t uses_ = 0;       // transfers that pend, and calls under way
    std::size_t submitting_ = 0; // transfers on their way into libusb, where they cannot be cancelled yet

    std::mutex transfersMutex_; // held while all are cancelled
    std::vector<LibusbTransfer *> transfers_;

    std::mutex listenerMutex_; // held while the listener is called
    GoneListener *listener_ = nullptr;

    std::mutex outMutex_; // one at a time
    std::unique_ptr<BulkIn> out_;
    std::mutex outDoneMutex_;
    std::condition_variable outDone_;
    bool isOutPending_ = false;
};

} // namespace Orvi::U3v
