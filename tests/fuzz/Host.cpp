// The answers to the transport's commands, in their order. Each begins with a byte that says what it is; the commonest
// is a plain acknowledge, whose data follow as they are, as many as were asked for.

#include "u3v/genapi/NodeMap.h"
#include "u3v/protocol/Camera.h"
#include "u3v/protocol/StreamLayout.h"
#include "u3v/protocol/Wire.h"

#include "tests/fuzz/NodeWalk.h"
#include "tests/fuzz/ScriptedLink.h"

namespace Orvi::Fuzz {

using U3v::TransferStatus;

namespace {

constexpr std::uint16_t readMem = 0x0800, pendingAck = 0x0805;
constexpr std::size_t header = 12;
constexpr std::size_t mostSlots = 1 << 16;

std::vector<std::byte> Ack(std::uint16_t status, std::uint16_t id, std::uint16_t requestId, Input data)
{
    std::vector<std::byte> packet(header + data.size());
    U3v::Store(packet, 0, U3v::controlPrefix);
    U3v::Store(packet, 4, status);
    U3v::Store(packet, 6, id);
    U3v::Store(packet, 8, static_cast<std::uint16_t>(data.size()));
    U3v::Store(packet, 10, requestId);
    std::copy(data.begin(), data.end(), packet.begin() + header);
    return packet;
}

class Device {
  public:
    explicit Device(Input input) : bytes_(input) {}

    ScriptedLink::Ending Answer(Input command)
    {
        if (bytes_.IsEmpty() || command.size() < header + 8)
            return {};
        const auto id = U3v::Load<std::uint16_t>(command, 6);
        const auto requestId = U3v::Load<std::uint16_t>(command, 10);
        const auto ackId = static_cast<std::uint16_t>(id + 1);
        switch (const auto kind = bytes_.Number<std::uint8_t>()) {
        default:
            return {TransferStatus::Completed, Ack(0, ackId, requestId, Data(id, command))};
        case 1: // an error, or a warning
            return {TransferStatus::Completed, Ack(bytes_.Number<std::uint16_t>(), ackId, requestId, bytes_.Field())};
        case 2:
            return {TransferStatus::Completed, Ack(0, pendingAck, requestId, bytes_.Take(4))};
        case 3: // of another command
            return {TransferStatus::Completed, Ack(0, bytes_.Number<std::uint16_t>(), requestId, bytes_.Field())};
        case 4:
            return {TransferStatus::Completed, Ack(0, ackId, bytes_.Number<std::uint16_t>(), bytes_.Field())};
        case 5: { // anything
            const Input raw = bytes_.Field();
            return {TransferStatus::Completed, {raw.begin(), raw.end()}};
        }
        case 6:
        case 7:
            return {kind == 6 ? TransferStatus::Stalled : TransferStatus::Babble};
        }
    }

  private:
    Input Data(std::uint16_t id, Input command)
    {
        if (id == readMem)
            return bytes_.Take(U3v::Load<std::uint16_t>(command, header + 10));
        written_[1] = static_cast<std::uint16_t>(command.size() - header - 8);
        return std::as_bytes(std::span(written_));
    }

    Bytes bytes_;
    std::uint16_t written_[2] = {};
};

void Use(U3v::Camera &camera)
{
    for (const auto item : {U3v::InfoItem::Manufacturer, U3v::InfoItem::UserDefinedName})
        Require(camera.Text(item).size() <= U3v::TextRegister::size, "a text is no longer than its register");
    if (const std::uint64_t sirm = camera.Map().sirm) {
        const auto layout = U3v::NegotiateLayout(camera.Control(), sirm, 1024, 1 << 20);
        const std::vector<std::size_t> slots = layout.Slots();
        Require(slots.size() <= mostSlots, "a frame has a sensible number of transfers");
    }
    std::uint32_t words[3] = {1, 2, 3};
    camera.WriteQuadlets(0x1000, words);
    camera.ReadQuadlets(0x1000, words);
    UseNodes(camera.Nodes());
}

} // namespace

void Host(Input input)
{
    Device device(input);
    ScriptedLink *opened = nullptr;
    auto link = std::make_unique<ScriptedLink>([&](U3v::Pipe) { return device.Answer(opened->lastCommand); });
    opened = link.get();
    try {
        U3v::Camera camera(std::move(link), {});
        Use(camera);
    } catch (const U3v::StatusError &) {
    }
}

} // namespace Orvi::Fuzz
