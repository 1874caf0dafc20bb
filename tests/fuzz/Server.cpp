// Commands to a virtual camera. Each begins with a byte: of even ones the command's header is made up for the data that
// follow, of odd ones the packet follows as it is. Data stand behind their length.

#include "vcam/GenCpCodes.h"
#include "vcam/VirtualCamera.h"
#include "vcam/Wire.h"

#include "tests/fuzz/Bytes.h"

#include <vector>

namespace Orvi::Fuzz {

using namespace Vcam;

namespace {

class Transfer final : public InTransfer {
  public:
    void Complete() noexcept override { isPending = false; }
    bool isPending = true;
};

std::vector<std::byte> NextCommand(Bytes &bytes, std::uint16_t requestId)
{
    const auto kind = bytes.Number<std::uint8_t>();
    const Input data = bytes.Field();
    if (kind % 2 == 1)
        return {data.begin(), data.end()};
    constexpr GenCpCommand commands[] = {GenCpCommand::ReadMem, GenCpCommand::WriteMem, GenCpCommand::ReadMemStacked,
                                         GenCpCommand::WriteMemStacked};
    std::vector<std::byte> packet(s_genCpHeader + data.size());
    FieldWriter(packet)
        .Put(s_controlPrefix)
        .Put(static_cast<std::uint16_t>(kind & 0x80 ? s_flagAckWanted | s_flagResend : s_flagAckWanted))
        .Put(static_cast<std::uint16_t>(commands[kind / 2 % 4]))
        .Put(static_cast<std::uint16_t>(data.size()))
        .Put(requestId);
    std::copy(data.begin(), data.end(), packet.begin() + s_genCpHeader);
    return packet;
}

void CheckAck(const Transfer &ack)
{
    if (ack.status != TransferStatus::Completed || ack.received == 0)
        return;
    Require(ack.received >= s_genCpHeader, "an acknowledge has a header");
    Require(LoadLe<std::uint32_t>(ack.buffer.data()) == s_controlPrefix, "an acknowledge begins with its prefix");
    Require(LoadLe<std::uint16_t>(ack.buffer.data() + 8) == ack.received - s_genCpHeader,
            "an acknowledge knows its length");
}

} // namespace

void Server(Input input)
{
    constexpr std::uint16_t mostCommands = 64;
    CameraConfig config;
    config.serial = "F1";
    config.sensorWidth = 64;
    config.sensorHeight = 48;
    const auto camera = VirtualCamera::Create(config);

    std::vector<std::byte> memory(2048);
    Bytes bytes(input);
    for (std::uint16_t id = 0; id < mostCommands && !bytes.IsEmpty(); ++id) {
        Transfer ack;
        ack.buffer = memory;
        camera->Submit(Endpoint::ControlIn, ack);
        if (camera->Out(NextCommand(bytes, id)) == TransferStatus::Stalled)
            camera->ClearHalt(Endpoint::ControlOut);
        if (!camera->Cancel(Endpoint::ControlIn, ack))
            CheckAck(ack);
    }
}

} // namespace Orvi::Fuzz
