#pragma once
// The way to one USB3 Vision device: bulk transfers on its control, event and stream interfaces, halts, and the news
// that it was pulled out. Everything above works alike on a real bus and on a virtual camera in this process.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Orvi::U3v {

using Clock = std::chrono::steady_clock;
using Deadline = Clock::time_point;

/// The interfaces of a device, numbered as the pipe flags of UC_Cam_AbortPipe.
enum class Pipe : std::uint8_t { Control, Event, Stream };

enum class TransferStatus : std::uint8_t {
    Completed,
    Stalled,   ///< the endpoint is halted
    Babble,    ///< the device sent more than fits; the data is lost
    Cancelled, ///< by Cancel()
    TimedOut,  ///< an Out() that the device did not take in time
    NoMemory,  ///< the system has no memory for this transfer now
    Gone,      ///< the device was unplugged
    Failed,    ///< for any other reason
};
const char *Name(TransferStatus status);

/// A bulk IN transfer, made once and submitted many times. Must not be pending when it is destroyed.
class BulkIn {
  public:
    class Listener {
      public:
        /// The transfer is the caller's again. Called once per Submit(), on any thread, also inside Submit() and
        /// Cancel(), without a lock of the link held. Must not wait.
        virtual void OnDone(BulkIn &transfer) noexcept = 0;

      protected:
        ~Listener() = default;
    };

    virtual ~BulkIn() = default;

    /// Posts the transfer. Transfers of a pipe are filled in the order of posting. The memory must be at rest until
    /// OnDone().
    virtual void Submit(std::span<std::byte> buffer) = 0;
    /// Asks for the transfer back. OnDone() comes in any case, perhaps later, perhaps with data.
    virtual void Cancel() = 0;

    TransferStatus Status() const { return status_; }
    /// The bytes that arrived; valid when the status is Completed or Cancelled.
    std::span<std::byte> Received() const { return buffer_.first(received_); }
    /// What was submitted.
    std::span<std::byte> Buffer() const { return buffer_; }

    /// The owner's own number.
    std::size_t tag = 0;

  protected:
    std::span<std::byte> buffer_;
    std::size_t received_ = 0;
    TransferStatus status_ = TransferStatus::Completed;
};

/// What the descriptors say of a device.
struct DeviceIdentity {
    std::string key;     ///< names the device on this machine; stable while it is plugged
    std::string guid;    ///< 12 characters: 4 of the vendor id, 8 unique
    std::string problem; ///< why it cannot be opened and what to do about it, or empty
    std::string manufacturer, model, family, deviceVersion, manufacturerInfo, serial, userDefinedName;
    std::uint32_t u3vVersion = 0; ///< major in bits 31..16, minor below
    std::uint32_t linkSpeed = 0;  ///< 1 low, 2 full, 4 high, 8 super, 16 super+
    std::uint32_t maxTransferSize = 0;
};

class UsbLink {
  public:
    class GoneListener {
      public:
        /// Called once, on any thread, when the device was pulled out. Must neither wait nor call the link.
        virtual void OnGone() noexcept = 0;

      protected:
        ~GoneListener() = default;
    };

    virtual ~UsbLink() = default;

    virtual const DeviceIdentity &Identity() const = 0;
    virtual bool HasPipe(Pipe pipe) const = 0;
    virtual std::size_t MaxPacketSize(Pipe pipe) const = 0;
    /// What may be posted on all pipes together; more would be refused as NoMemory.
    virtual std::size_t MaxBytesInFlight() const = 0;

    /// One bulk OUT transfer to the control interface.
    virtual TransferStatus Out(std::span<const std::byte> data, Deadline deadline) = 0;
    virtual std::unique_ptr<BulkIn> NewTransfer(Pipe pipe, BulkIn::Listener &listener) = 0;

    /// For the control pipe both endpoints. They do nothing once the device is gone.
    virtual void SetHalt(Pipe pipe) = 0;
    virtual void ClearHalt(Pipe pipe) = 0;
    /// Resets the device's port. Pending transfers end as Cancelled. A device that comes back as a new one is gone for
    /// this link.
    virtual TransferStatus Reset() = 0;

    virtual bool IsGone() const = 0;
    /// Gives the device back. No transfer may be pending; from now on the device is gone for this link.
    virtual void Close() = 0;
    /// Calls at once when the device is gone already. After SetGoneListener(nullptr) has returned it calls no more.
    virtual void SetGoneListener(GoneListener *listener) = 0;
};

/// A device that was found and can be opened.
class UsbDevice {
  public:
    virtual ~UsbDevice() = default;
    virtual DeviceIdentity Identity() const = 0;
    /// Claims the device. Throws StatusError.
    virtual std::unique_ptr<UsbLink> Open() = 0;
};

} // namespace Orvi::U3v
