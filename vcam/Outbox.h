#pragma once
// Sends packets that the device makes one at a time (acknowledges, events) into the transfers of an endpoint, on
// whichever thread brings a packet or a transfer.

#include "vcam/InEndpoint.h"

#include <vector>

namespace Orvi::Vcam {

class Outbox {
  public:
    /// Gives the next packet, empty when there is none.
    using Source = std::function<std::vector<std::byte>()>;
    /// Called after a packet has reached the host.
    using OnSent = std::function<void()>;

    Outbox(InEndpoint &endpoint, Source source, OnSent onSent);

    /// Sends what there is. Never blocks on a transfer; calls Complete() of those that it fills. A packet that waits
    /// for a transfer when the endpoint's epoch ends is thrown away.
    void Pump();

  private:
    InEndpoint &endpoint_;
    const Source source_;
    const OnSent onSent_;
    std::mutex mutex_;
    std::vector<std::byte> packet_;
    Message message_;
    std::uint64_t epoch_ = 0;
    bool isPumping_ = false;
    bool isAskedAgain_ = false;
};

} // namespace Orvi::Vcam
