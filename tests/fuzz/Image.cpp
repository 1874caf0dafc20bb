// First the layout: sizes of the payload, the request and the transfers. Then how each transfer of a frame ends.

#include "u3v/protocol/StreamFrame.h"

#include "tests/fuzz/ScriptedLink.h"

namespace Orvi::Fuzz {

using U3v::TransferStatus;

namespace {

constexpr TransferStatus endings[] = {TransferStatus::Completed, TransferStatus::Cancelled, TransferStatus::Babble,
                                      TransferStatus::Stalled,   TransferStatus::Failed,    TransferStatus::Gone};

/// One byte for the ending; of a transfer with data then their number, and the first of them. The rest is zeros.
ScriptedLink::Ending Next(Bytes &bytes)
{
    const auto kind = bytes.Number<std::uint8_t>();
    ScriptedLink::Ending ending{endings[kind / 4 % std::size(endings)]};
    if (ending.status != TransferStatus::Completed && ending.status != TransferStatus::Cancelled)
        return ending;
    const Input head = bytes.Take(bytes.Number<std::uint16_t>());
    ending.bytes.assign(head.begin(), head.end());
    if (kind % 4 == 3) // filled to a whole number of packets
        ending.bytes.resize((head.size() + 1023) / 1024 * 1024);
    return ending;
}

class Returned : public U3v::BulkIn::Listener {
  public:
    void OnDone(U3v::BulkIn &transfer) noexcept override { last = &transfer; }
    U3v::BulkIn *last = nullptr;
};

} // namespace

void Image(Input input)
{
    Bytes bytes(input);
    const std::size_t payload = std::size_t{bytes.Number<std::uint16_t>()} % 8192 + 1;
    const std::size_t size = bytes.Number<std::uint16_t>() % 8192;
    const std::size_t transfer = std::size_t{1024} << bytes.Number<std::uint8_t>() % 3;
    const auto layout = U3v::StreamLayout::Cut(payload, 52, 32, 1024, 1024, transfer);

    ScriptedLink link([&](U3v::Pipe) { return Next(bytes); });
    Returned returned;
    std::vector<std::byte> spill(layout.MaxSlot());
    U3v::StreamFrame frame(link, returned, layout, 0, spill);
    for (int round = 0; round < 2; ++round) {
        std::vector<std::byte> memory(size);
        U3v::Request request;
        request.memory = memory.data();
        request.size = memory.size();
        frame.Begin(request);
        while (!frame.IsFullyPosted()) {
            frame.Submit(frame.CountPosted());
            frame.CountReturned(*returned.last, 1);
        }
        const auto result = frame.Evaluate();
        Require(request.info.ullValidPayloadSize <= size, "what is valid lies in the caller's memory");
        Require(result.blockId || request.info.uiStatus != CAM_API_STS_SUCCESS,
                "an image without a leader is no image");
        Require(!frame.IsRemoved() || frame.IsBroken(), "a frame of a camera that is gone is broken");
    }
}

} // namespace Orvi::Fuzz
