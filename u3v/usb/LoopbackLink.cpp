#include "u3v/usb/LoopbackLink.h"

namespace Orvi::U3v {
namespace {

TransferStatus Translate(Vcam::TransferStatus status)
{
    switch (status) {
    case Vcam::TransferStatus::Completed:
        return TransferStatus::Completed;
    case Vcam::TransferStatus::Stalled:
        return TransferStatus::Stalled;
    case Vcam::TransferStatus::Babble:
        return TransferStatus::Babble;
    case Vcam::TransferStatus::Cancelled:
        return TransferStatus::Cancelled;
    case Vcam::TransferStatus::Gone:
        return TransferStatus::Gone;
    }
    return TransferStatus::Failed;
}

Vcam::Endpoint InEndpointOf(Pipe pipe)
{
    switch (pipe) {
    case Pipe::Event:
        return Vcam::Endpoint::EventIn;
    case Pipe::Stream:
        return Vcam::Endpoint::StreamIn;
    case Pipe::Control:
        break;
    }
    return Vcam::Endpoint::ControlIn;
}

class LoopbackTransfer : public BulkIn, private Vcam::InTransfer {
  public:
    LoopbackTransfer(Vcam::UsbFunction &device, Vcam::Endpoint endpoint, Listener &listener)
        : device_(device), endpoint_(endpoint), listener_(listener)
    {
    }

    void Submit(std::span<std::byte> memory) override
    {
        buffer_ = memory;
        InTransfer::buffer = memory;
        InTransfer::received = 0;
        device_.Submit(endpoint_, *this);
    }

    void Cancel() override { device_.Cancel(endpoint_, *this); }

  private:
    void Complete() noexcept override
    {
        received_ = InTransfer::received;
        status_ = Translate(InTransfer::status);
        listener_.OnDone(*this);
    }

    Vcam::UsbFunction &device_;
    const Vcam::Endpoint endpoint_;
    Listener &listener_;
};

} // namespace

LoopbackLink::LoopbackLink(std::shared_ptr<Vcam::UsbFunction> device)
    : device_(std::move(device)),
      identity_(IdentityOf(device_->Identity())),
      maxPacketSize_(device_->Identity().maxPacketSize)
{
    device_->SetGoneObserver(this);
}

void LoopbackLink::Close()
{
    // After an unplug the device's observer may be the next link already.
    if (!isGone_.exchange(true))
        device_->SetGoneObserver(nullptr);
    // The news of the unplug may still be on its way through OnGone().
    std::lock_guard lock(mutex_);
}

DeviceIdentity LoopbackLink::IdentityOf(const Vcam::UsbIdentity &device)
{
    DeviceIdentity identity;
    identity.key = "virtual:" + device.guid;
    identity.guid = device.guid;
    identity.manufacturer = device.vendor;
    identity.model = device.model;
    identity.family = device.family;
    identity.deviceVersion = device.deviceVersion;
    identity.manufacturerInfo = device.manufacturerInfo;
    identity.serial = device.serial;
    identity.userDefinedName = device.userDefinedName;
    identity.u3vVersion = static_cast<std::uint32_t>(device.u3vMajor) << 16 | device.u3vMinor;
    identity.linkSpeed = static_cast<std::uint32_t>(device.speed);
    identity.maxTransferSize = 0x200000;
    return identity;
}

TransferStatus LoopbackLink::Out(std::span<const std::byte> data, Deadline)
{
    // A device that is plugged again is another link's.
    return isGone_ ? TransferStatus::Gone : Translate(device_->Out(data));
}

std::unique_ptr<BulkIn> LoopbackLink::NewTransfer(Pipe pipe, BulkIn::Listener &listener)
{
    return std::make_unique<LoopbackTransfer>(*device_, InEndpointOf(pipe), listener);
}

void LoopbackLink::SetHalt(Pipe pipe)
{
    if (isGone_)
        return;
    if (pipe == Pipe::Control)
        device_->SetHalt(Vcam::Endpoint::ControlOut);
    device_->SetHalt(InEndpointOf(pipe));
}

void LoopbackLink::ClearHalt(Pipe pipe)
{
    if (isGone_)
        return;
    if (pipe == Pipe::Control)
        device_->ClearHalt(Vcam::Endpoint::ControlOut);
    device_->ClearHalt(InEndpointOf(pipe));
}

TransferStatus LoopbackLink::Reset()
{
    // A halt ends the transfers that pend, and clearing it drops what the device still has to send.
    for (const Pipe pipe : {Pipe::Stream, Pipe::Event, Pipe::Control}) {
        SetHalt(pipe);
        ClearHalt(pipe);
    }
    return isGone_ ? TransferStatus::Gone : TransferStatus::Completed;
}

void LoopbackLink::SetGoneListener(GoneListener *listener)
{
    std::lock_guard lock(mutex_);
    listener_ = listener;
    if (isGone_ && listener_ != nullptr)
        listener_->OnGone();
}

void LoopbackLink::OnGone() noexcept
{
    // The lock is held during the call, so that whoever takes the listener away may destroy it afterwards.
    std::lock_guard lock(mutex_);
    isGone_ = true;
    if (listener_ != nullptr)
        listener_->OnGone();
}

} // namespace Orvi::U3v
