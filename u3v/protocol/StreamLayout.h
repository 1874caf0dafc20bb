#pragma once
// How a payload is cut into transfers, and the registers that tell the camera.

#include "u3v/protocol/BootstrapMap.h"

#include <cstddef>
#include <vector>

namespace Orvi::U3v {

struct StreamLayout {
    std::size_t payloadSize = 0;
    std::size_t transferSize = 0;
    std::size_t transferCount = 0;
    std::size_t final1Size = 0;
    std::size_t final2Size = 0; ///< may reach beyond the payload
    std::size_t leaderSize = 0;
    std::size_t trailerSize = 0;

    /// `packetSize` is the endpoint's, `alignment` the camera's, `maxTransferSize` the caller's wish.
    static StreamLayout Cut(std::size_t payloadSize, std::size_t leaderSize, std::size_t trailerSize,
                            std::size_t alignment, std::size_t packetSize, std::size_t maxTransferSize);

    /// Sizes of the payload's transfers in their order.
    std::vector<std::size_t> Slots() const;
    std::size_t MaxSlot() const;
    std::size_t BytesInFlight() const;

    bool operator==(const StreamLayout &) const = default;
};

/// Asks the camera what it is going to send and tells it how to send it.
StreamLayout NegotiateLayout(GenCp &control, std::uint64_t sirm, std::size_t packetSize, std::size_t maxTransferSize);

} // namespace Orvi::U3v
