#pragma once
// One transfer of libusb, made once and submitted many times. The data goes straight into, or comes from, the memory
// that is submitted.

#include "u3v/usb/Libusb.h"

#include <cstdint>

namespace Orvi::U3v {

class LibusbTransfer;

/// What a transfer needs of its link.
class TransferOwner {
  public:
    virtual void Add(LibusbTransfer &transfer) = 0;
    virtual void Remove(LibusbTransfer &transfer) noexcept = 0;

    /// Asks to hand a transfer to libusb: Completed when it may, else the status with which it ends at once.
    virtual TransferStatus BeginSubmit() noexcept = 0;
    /// libusb has it, or has refused it.
    virtual void EndSubmit() noexcept = 0;
    /// A transfer that was begun is over. Gives the status that its listener is to see.
    virtual TransferStatus EndTransfer(TransferStatus status) noexcept = 0;

  protected:
    ~TransferOwner() = default;
};

class LibusbTransfer : public BulkIn {
  public:
    /// An IN endpoint, or an OUT endpoint whose memory is only read. Throws std::bad_alloc.
    LibusbTransfer(TransferOwner &owner, libusb_device_handle *handle, std::uint8_t endpoint, Listener &listener);
    LibusbTransfer(const LibusbTransfer &) = delete;
    LibusbTransfer &operator=(const LibusbTransfer &) = delete;
    ~LibusbTransfer() override;

    void Submit(std::span<std::byte> memory) override;
    void Cancel() override;

  private:
    static void LIBUSB_CALL OnComplete(libusb_transfer *transfer);
    void End(TransferStatus status, std::size_t received) noexcept;

    TransferOwner &owner_;
    libusb_device_handle *const handle_;
    const std::uint8_t endpoint_;
    Listener &listener_;
    libusb_transfer *const transfer_;
};

} // namespace Orvi::U3v
