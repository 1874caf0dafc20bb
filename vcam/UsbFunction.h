#pragma once
// The USB side of a virtual device, as any host adapter sees it: the in-process link of the transport and the USB/IP
// exporter drive a camera through this header alone. It knows transfers and packets, not cameras.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace Orvi::Vcam {

/// How a transfer ended, in the terms of a USB host controller.
enum class TransferStatus {
    Completed,
    Stalled,   ///< the endpoint is halted
    Babble,    ///< the device sent more than fits; the data is lost
    Cancelled, ///< by the host
    Gone,      ///< the device was unplugged
};

/// A bulk IN transfer that a host has posted. The host owns it and its memory until Complete() has been called.
class InTransfer {
  public:
    virtual ~InTransfer() = default;

    std::span<std::byte> buffer;
    std::size_t received = 0;
    TransferStatus status = TransferStatus::Completed;

    /// Called once, without any lock of the device held: on the device's thread, or inside Submit(), Out(), Cancel(),
    /// SetHalt() or Unplug() on the caller's thread (an acknowledge is ready before Out() returns). It may call back.
    virtual void Complete() noexcept = 0;
};

/// The bulk endpoints of a USB3 Vision device. Numbers are those of its descriptors.
enum class Endpoint : std::uint8_t {
    ControlOut = 0x01,
    ControlIn = 0x81,
    EventIn = 0x82,
    StreamIn = 0x83,
};

/// USB link speed with the codes of the USB3 Vision speed register.
enum class LinkSpeed : std::uint32_t { Low = 1, Full = 2, High = 4, Super = 8, SuperPlus = 16 };

/// What the descriptors say of the device.
struct UsbIdentity {
    std::string guid; ///< 12 characters: 4 of the vendor id, 8 unique
    std::string vendor, model, family, deviceVersion, manufacturerInfo, serial, userDefinedName;
    std::uint16_t genCpMajor = 1, genCpMinor = 0, u3vMajor = 1, u3vMinor = 0;
    LinkSpeed speed = LinkSpeed::Super;
    std::uint16_t maxPacketSize = 1024; ///< of every bulk endpoint
};

/// A virtual USB device. All functions may be called from any thread.
class UsbFunction {
  public:
    virtual ~UsbFunction() = default;

    virtual UsbIdentity Identity() const = 0;

    /// One bulk OUT transfer to the control endpoint. Returns Completed, Stalled or Gone.
    virtual TransferStatus Out(std::span<const std::byte> data) = 0;

    /// Posts a transfer; transfers of one endpoint are filled in the order of their posting. A transfer for a halted
    /// endpoint or an unplugged device completes at once, before Submit() returns.
    virtual void Submit(Endpoint endpoint, InTransfer &transfer) = 0;

    /// Takes a posted transfer back: completes it as Cancelled before it returns and answers true; answers false when
    /// it has completed already or is just being completed.
    virtual bool Cancel(Endpoint endpoint, InTransfer &transfer) = 0;

    /// SET_FEATURE(ENDPOINT_HALT): posted and later transfers end as Stalled.
    virtual void SetHalt(Endpoint endpoint) = 0;

    /// CLEAR_FEATURE(ENDPOINT_HALT): drops what is queued on the endpoint and lets it go on.
    virtual void ClearHalt(Endpoint endpoint) = 0;

    /// Tells a host adapter that the device is being pulled out. Called once, on the thread that unplugs, without a
    /// lock held; never called again after SetGoneObserver(nullptr).
    class GoneObserver {
      public:
        virtual ~GoneObserver() = default;
        virtual void OnGone() noexcept = 0;
    };
    virtual void SetGoneObserver(GoneObserver *observer) = 0;
};

} // namespace Orvi::Vcam
