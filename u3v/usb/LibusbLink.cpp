#include "u3v/usb/LibusbLink.h"

#include "u3v/core/Log.h"

#include <algorithm>
#include <utility>

namespace Orvi::U3v {
namespace {

constexpr unsigned controlTimeout = 1000; // ms
constexpr std::uint16_t endpointHalt = 0;

int SetEndpointHalt(libusb_device_handle *handle, unsigned char endpoint)
{
    return libusb_control_transfer(handle, LIBUSB_RECIPIENT_ENDPOINT, LIBUSB_REQUEST_SET_FEATURE, endpointHalt,
                                   endpoint, nullptr, 0, controlTimeout);
}

} // namespace

LibusbLink::LibusbLink(LibusbContext &context, std::unique_ptr<LibusbHandle> handle, const CameraInterfaces &interfaces,
                       DeviceIdentity identity)
    : context_(context),
      handle_(std::move(handle)),
      rawHandle_(handle_->Get()),
      identity_(std::move(identity)),
      interfaces_{interfaces.control, interfaces.event.value_or(BulkInterface()),
                  interfaces.stream.value_or(BulkInterface())}
{
    for (const BulkInterface &interface : interfaces_)
        if (interface.in != 0)
            handle_->Claim(interfaces.configuration, interface.number);
    TransferOwner &owner = *this;
    BulkIn::Listener &listener = *this;
    out_ = std::make_unique<LibusbTransfer>(owner, rawHandle_, interfaces.control.out, listener);
    context_.AddUser(handle_->Device().get(), *this);
}

void LibusbLink::Close()
{
    std::lock_guard close(closeMutex_);
    if (handle_ == nullptr)
        return;
    state_ = State::Gone;
    CancelAll();
    {
        std::unique_lock lock(useMutex_);
        unused_.wait(lock, [this] { return uses_ == 0; });
    }
    handle_.reset();
    context_.RemoveUser(*this);
}

std::size_t LibusbLink::MaxBytesInFlight() const
{
    // The limit is that of all programs together; something is left for control, events and book-keeping.
    const std::size_t memory = context_.System().UsbfsMemory();
    return memory == SIZE_MAX ? SIZE_MAX : memory / 8 * 7 / std::max<std::size_t>(context_.UserCount(), 1);
}

TransferStatus LibusbLink::Out(std::span<const std::byte> data, Deadline deadline)
{
    std::lock_guard one(outMutex_);
    {
        std::lock_guard lock(outDoneMutex_);
        isOutPending_ = true;
    }
    out_->Submit({const_cast<std::byte *>(data.data()), data.size()});
    std::unique_lock lock(outDoneMutex_);
    const bool inTime = outDone_.wait_until(lock, deadline, [this] { return !isOutPending_; });
    if (!inTime) {
        lock.unlock();
        out_->Cancel();
        lock.lock();
        outDone_.wait(lock, [this] { return !isOutPending_; });
    }
    if (out_->Status() == TransferStatus::Cancelled && !inTime)
        return TransferStatus::TimedOut;
    if (out_->Status() == TransferStatus::Completed && out_->Received().size() != data.size())
        return TransferStatus::Failed;
    return out_->Status();
}

void LibusbLink::OnDone(BulkIn &) noexcept
{
    std::lock_guard lock(outDoneMutex_);
    isOutPending_ = false;
    outDone_.notify_all();
}

// Callers may hold a lock that the event thread waits for, which Close() waits for: no lock here.
std::unique_ptr<BulkIn> LibusbLink::NewTransfer(Pipe pipe, BulkIn::Listener &listener)
{
    TransferOwner &owner = *this;
    return std::make_unique<LibusbTransfer>(owner, rawHandle_, InterfaceOf(pipe).in, listener);
}

void LibusbLink::SetHalt(Pipe pipe) { ForEachEndpoint(pipe, "halting", SetEndpointHalt); }

void LibusbLink::ClearHalt(Pipe pipe) { ForEachEndpoint(pipe, "clearing the halt of", libusb_clear_halt); }

void LibusbLink::ForEachEndpoint(Pipe pipe, const char *what, EndpointCall call)
{
    for (const std::uint8_t endpoint : {InterfaceOf(pipe).out, InterfaceOf(pipe).in}) {
        if (endpoint == 0)
            continue;
        const int result = WithHandle([&](libusb_device_handle *handle) { return call(handle, endpoint); });
        if (result < 0 && !IsGone())
            LogDevice(CAM_LOG_LEVEL_WARN, "%s: %s endpoint 0x%02X: %s", identity_.serial.c_str(), what,
                      unsigned{endpoint}, TextOfError(result).c_str());
    }
}

TransferStatus LibusbLink::Reset()
{
    State expected = State::Open;
    if (!state_.compare_exchange_strong(expected, State::Resetting))
        return expected == State::Gone ? TransferStatus::Gone : TransferStatus::Cancelled;
    CancelAll();
    {
        std::unique_lock lock(useMutex_);
        unused_.wait(lock, [this] { return uses_ == 0; });
        ++uses_;
    }
    const int error = state_ == State::Resetting ? libusb_reset_device(rawHandle_) : LIBUSB_ERROR_NO_DEVICE;
    expected = State::Resetting;
    state_.compare_exchange_strong(expected, State::Open);
    // It has left and comes back as a new device: the reset itself is done.
    const bool isAnew = error == LIBUSB_ERROR_NOT_FOUND;
    if (error != 0)
        LogDevice(CAM_LOG_LEVEL_WARN, "%s: reset: %s", identity_.serial.c_str(),
                  isAnew ? "the camera comes back as a new device" : TextOfError(error).c_str());
    if (isAnew || error == LIBUSB_ERROR_NO_DEVICE)
        MarkGone();
    EndUse();
    return error == 0 || isAnew ? TransferStatus::Completed : TransferStatusOfError(error);
}

void LibusbLink::SetGoneListener(GoneListener *listener)
{
    std::lock_guard lock(listenerMutex_);
    listener_ = listener;
    if (IsGone() && listener_ != nullptr)
        listener_->OnGone();
}

void LibusbLink::MarkGone() noexcept
{
    {
        // The lock is held during the call, so that whoever takes the listener away may destroy it afterwards.
        std::lock_guard lock(listenerMutex_);
        if (state_.exchange(State::Gone) == State::Gone)
            return;
        if (listener_ != nullptr)
            listener_->OnGone();
    }
    CancelAll();
}

void LibusbLink::CancelAll() noexcept
{
    {
        std::unique_lock lock(useMutex_);
        unused_.wait(lock, [this] { return submitting_ == 0; });
    }
    std::lock_guard lock(transfersMutex_);
    for (LibusbTransfer *transfer : transfers_)
        transfer->Cancel();
}

void LibusbLink::Add(LibusbTransfer &transfer)
{
    std::lock_guard lock(transfersMutex_);
    transfers_.push_back(&transfer);
}

void LibusbLink::Remove(LibusbTransfer &transfer) noexcept
{
    std::lock_guard lock(transfersMutex_);
    std::erase(transfers_, &transfer);
}

TransferStatus LibusbLink::BeginSubmit() noexcept
{
    std::lock_guard lock(useMutex_);
    switch (state_) {
    case State::Gone:
        return TransferStatus::Gone;
    case State::Resetting:
        return TransferStatus::Cancelled;
    case State::Open:
        break;
    }
    ++uses_;
    ++submitting_;
    return TransferStatus::Completed;
}

void LibusbLink::EndSubmit() noexcept
{
    std::lock_guard lock(useMutex_);
    if (--submitting_ == 0 && state_ != State::Open)
        unused_.notify_all();
}

TransferStatus LibusbLink::EndTransfer(TransferStatus status) noexcept
{
    if (status == TransferStatus::Gone)
        MarkGone();
    // What was taken back because the device is gone has not been cancelled by anybody who would expect that.
    if (IsGone() && status != TransferStatus::Completed)
        status = TransferStatus::Gone;
    EndUse();
    return status;
}

void LibusbLink::EndUse() noexcept
{
    std::lock_guard lock(useMutex_);
    --uses_;
    if (state_ != State::Open)
        unused_.notify_all();
}

template <class Call>
int LibusbLink::WithHandle(Call call)
{
    {
        std::lock_guard lock(useMutex_);
        if (state_ != State::Open)
            return LIBUSB_ERROR_NO_DEVICE;
        ++uses_;
    }
    const int result = call(rawHandle_);
    if (result == LIBUSB_ERROR_NO_DEVICE)
        MarkGone();
    EndUse();
    return result;
}

} // namespace Orvi::U3v
