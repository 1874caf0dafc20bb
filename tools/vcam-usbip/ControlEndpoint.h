#pragma once
// Endpoint 0: the standard requests that every USB device answers.

#include "Descriptors.h"
#include "vcam/UsbFunction.h"

#include <array>
#include <atomic>
#include <span>

namespace Orvi::UsbIp {

using SetupPacket = std::array<std::uint8_t, 8>;

class ControlEndpoint {
  public:
    explicit ControlEndpoint(Vcam::UsbFunction &device) : device_(device) {}

    /// Carries a request out and answers with its data, perhaps none, no more than asked for. Nothing for a request
    /// that the device refuses: a stall.
    std::optional<Bytes> Answer(const SetupPacket &setup);

    bool IsConfigured() const { return configuration_ != 0; }
    /// Tells that a transfer was stalled: only so does the host's side learn of halts that the device began itself.
    void NoteStall(Vcam::Endpoint endpoint);

  private:
    struct Setup;
    std::optional<Bytes> Describe(const Setup &setup) const;
    std::optional<Bytes> Status(const Setup &setup) const;
    std::optional<Bytes> ChangeFeature(const Setup &setup, bool isSet);
    std::optional<Bytes> ChangeHalt(std::uint16_t address, bool isSet);
    std::optional<Bytes> Configure(std::uint16_t value);
    std::optional<Bytes> SelectSetting(const Setup &setup);
    void ClearHalt(std::size_t index);

    Vcam::UsbFunction &device_;
    std::uint8_t configuration_ = 0;
    std::uint16_t powerStates_ = 0; // bits of GET_STATUS: U1, U2, latency messages
    std::array<std::atomic<bool>, 4> isHalted_{};
};

} // namespace Orvi::UsbIp
