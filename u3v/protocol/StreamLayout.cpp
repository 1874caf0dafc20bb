#include "u3v/protocol/StreamLayout.h"

#include "u3v/core/Status.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

// For cameras that do not say how large their leaders and trailers are.
constexpr std::size_t defaultLeaderSize = 1024;

std::size_t RoundedSize(std::size_t required, std::size_t unit)
{
    return RoundUp(required == 0 ? defaultLeaderSize : required, unit);
}

} // namespace

StreamLayout StreamLayout::Cut(std::size_t payloadSize, std::size_t leaderSize, std::size_t trailerSize,
                               std::size_t alignment, std::size_t packetSize, std::size_t maxTransferSize)
{
    const std::size_t unit = std::max(alignment, packetSize);
    StreamLayout layout;
    layout.payloadSize = payloadSize;
    layout.leaderSize = RoundedSize(leaderSize, unit);
    layout.trailerSize = RoundedSize(trailerSize, unit);
    layout.transferSize = std::max(maxTransferSize / unit * unit, unit);
    layout.transferCount = payloadSize / layout.transferSize;
    const std::size_t rest = payloadSize % layout.transferSize;
    layout.final1Size = rest / unit * unit;
    // Only this one may be larger than what is left of the caller's buffer.
    layout.final2Size = RoundUp(rest - layout.final1Size, unit);
    return layout;
}

std::vector<std::size_t> StreamLayout::Slots() const
{
    std::vector<std::size_t> slots(transferCount, transferSize);
    for (const std::size_t size : {final1Size, final2Size})
        if (size != 0)
            slots.push_back(size);
    return slots;
}

std::size_t StreamLayout::MaxSlot() const
{
    return std::max({transferCount == 0 ? 0 : transferSize, final1Size, final2Size});
}

std::size_t StreamLayout::BytesInFlight() const
{
    return leaderSize + transferSize * transferCount + final1Size + final2Size + trailerSize;
}

StreamLayout NegotiateLayout(GenCp &control, std::uint64_t sirm, std::size_t packetSize, std::size_t maxTransferSize)
{
    const auto payloadSize = ReadRegister(control, sirm, Sirm::requiredPayloadSize);
    if (payloadSize == 0 || payloadSize > UINT32_MAX)
        throw StatusError(CAM_API_STS_NOT_READY,
                          "the camera asks for " + std::to_string(payloadSize) + " bytes an image");
    const auto alignmentBits = ReadRegister(control, sirm, Sirm::info) >> 24;
    const StreamLayout layout =
        StreamLayout::Cut(payloadSize, ReadRegister(control, sirm, Sirm::requiredLeaderSize),
                          ReadRegister(control, sirm, Sirm::requiredTrailerSize),
                          std::size_t{1} << std::min(alignmentBits, 20U), packetSize, maxTransferSize);

    const auto write = [&](Register<std::uint32_t> reg, std::size_t value) {
        WriteRegister(control, sirm, reg, static_cast<std::uint32_t>(value));
    };
    write(Sirm::maxLeaderSize, layout.leaderSize);
    write(Sirm::maxTrailerSize, layout.trailerSize);
    write(Sirm::transferSize, layout.transferSize);
    write(Sirm::transferCount, layout.transferCount);
    write(Sirm::final1Size, layout.final1Size);
    write(Sirm::final2Size, layout.final2Size);
    return layout;
}

} // namespace Orvi::U3v
