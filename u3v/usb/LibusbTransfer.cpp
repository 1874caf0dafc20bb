#include "u3v/usb/LibusbTransfer.h"

#include "u3v/core/Log.h"

#include <climits>
#include <new>

namespace Orvi::U3v {

LibusbTransfer::LibusbTransfer(TransferOwner &owner, libusb_device_handle *handle, std::uint8_t endpoint,
                               Listener &listener)
    : owner_(owner), handle_(handle), endpoint_(endpoint), listener_(listener), transfer_(libusb_alloc_transfer(0))
{
    if (transfer_ == nullptr)
        throw std::bad_alloc();
    owner_.Add(*this);
}

LibusbTransfer::~LibusbTransfer()
{
    owner_.Remove(*this);
    libusb_free_transfer(transfer_);
}

void LibusbTransfer::Submit(std::span<std::byte> memory)
{
    buffer_ = memory;
    received_ = 0;
    TransferOwner &owner = owner_; // once libusb has the transfer, it may be over, and gone, at any time
    if (const TransferStatus refusal = owner.BeginSubmit(); refusal != TransferStatus::Completed) {
        End(refusal, 0);
        return;
    }
    int error = LIBUSB_ERROR_NO_MEM;
    if (memory.size() <= INT_MAX) {
        libusb_fill_bulk_transfer(transfer_, handle_, endpoint_, reinterpret_cast<unsigned char *>(memory.data()),
                                  static_cast<int>(memory.size()), OnComplete, this, 0);
        error = libusb_submit_transfer(transfer_);
    }
    owner.EndSubmit();
    if (error == 0)
        return;
    LogDevice(CAM_LOG_LEVEL_DEBUG, "posting %zu bytes on endpoint 0x%02X: %s", memory.size(), unsigned{endpoint_},
              TextOfError(error).c_str());
    End(owner.EndTransfer(TransferStatusOfError(error)), 0);
}

// libusb refuses when the transfer is not pending, which is what is wanted.
void LibusbTransfer::Cancel() { libusb_cancel_transfer(transfer_); }

void LIBUSB_CALL LibusbTransfer::OnComplete(libusb_transfer *transfer)
{
    auto &self = *static_cast<LibusbTransfer *>(transfer->user_data);
    const auto received = static_cast<std::size_t>(transfer->actual_length);
    self.End(self.owner_.EndTransfer(TransferStatusOf(transfer->status)), received);
}

// The last act: the listener may destroy or submit the transfer.
void LibusbTransfer::End(TransferStatus status, std::size_t received) noexcept
{
    status_ = status;
    received_ = status == TransferStatus::Completed || status == TransferStatus::Cancelled ? received : 0;
    listener_.OnDone(*this);
}

} // namespace Orvi::U3v
