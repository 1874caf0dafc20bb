#include "Messages.h"

#include <cstring>
#include <string>

namespace Orvi::UsbIp {
namespace {

enum Command : std::uint32_t { CmdSubmit = 1, CmdUnlink = 2, RetSubmit = 3, RetUnlink = 4 };

// Where the fields stand; the meaning of those behind the first five depends on the command.
enum Field : std::size_t {
    AtCommand = 0x00,
    AtSeqnum = 0x04,
    AtDirection = 0x0C,
    AtEndpoint = 0x10,
    AtUnlinkTarget = 0x14,
    AtStatus = 0x14,
    AtLength = 0x18,
    AtPackets = 0x20,
    AtSetup = 0x28,
};

// The kernel's own limit is far below; a longer buffer is a sign of garbage.
constexpr std::uint32_t s_longestBuffer = 64u << 20;

Header Reply(Command command, std::uint32_t seqnum, UrbStatus status)
{
    Header header{};
    StoreBe<std::uint32_t>(&header[AtCommand], command);
    StoreBe(&header[AtSeqnum], seqnum);
    StoreBe(&header[AtStatus], static_cast<std::uint32_t>(status));
    return header;
}

} // namespace

Request ParseRequest(const Header &header)
{
    const auto field = [&](Field at) { return LoadBe<std::uint32_t>(&header[at]); };
    const std::uint32_t seqnum = field(AtSeqnum);
    switch (field(AtCommand)) {
    case CmdSubmit: {
        Submit submit{seqnum, field(AtDirection) == 1, field(AtEndpoint), field(AtLength), {}};
        if (field(AtDirection) > 1 || submit.endpoint > 15)
            throw ProtocolError("transfer " + std::to_string(seqnum) + " is for no endpoint of USB");
        if (submit.length > s_longestBuffer)
            throw ProtocolError("transfer " + std::to_string(seqnum) + " has a buffer of " +
                                std::to_string(submit.length) + " bytes");
        if (const std::uint32_t packets = field(AtPackets); packets != 0 && packets != 0xFFFFFFFF)
            throw ProtocolError("transfer " + std::to_string(seqnum) +
                                " is isochronous; the camera has bulk endpoints");
        std::memcpy(submit.setup.data(), &header[AtSetup], submit.setup.size());
        return submit;
    }
    case CmdUnlink:
        return Unlink{seqnum, field(AtUnlinkTarget)};
    default:
        throw ProtocolError("unknown command " + std::to_string(field(AtCommand)));
    }
}

Header SubmitReply(std::uint32_t seqnum, UrbStatus status, std::size_t actualLength)
{
    Header header = Reply(RetSubmit, seqnum, status);
    StoreBe(&header[AtLength], static_cast<std::uint32_t>(actualLength));
    return header;
}

Header UnlinkReply(std::uint32_t seqnum, UrbStatus status) { return Reply(RetUnlink, seqnum, status); }

} // namespace Orvi::UsbIp
