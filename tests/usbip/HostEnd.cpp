#include "HostEnd.h"

#include <sys/socket.h>
#include <sys/time.h>

namespace Orvi::UsbIp::Test {

HostEnd::HostEnd(Socket socket) : socket_(std::move(socket))
{
    const timeval limit{20, 0}; // only a failure takes as long
    setsockopt(socket_.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

void HostEnd::SendRaw(const Bytes &bytes)
{
    EXPECT_EQ(send(socket_.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

std::uint32_t HostEnd::Send(std::uint32_t command, bool isIn, std::uint32_t endpoint, std::uint32_t word14,
                            std::uint32_t length, const SetupPacket &setup, const Bytes &data)
{
    const std::uint32_t seqnum = nextSeqnum_++;
    Bytes message(48);
    const std::uint32_t words[] = {command, seqnum, 0x10001, isIn, endpoint, word14, length, 0, 0xFFFFFFFF, 0};
    for (std::size_t i = 0; i < std::size(words); ++i)
        StoreBe(&message[4 * i], words[i]);
    for (std::size_t i = 0; i < setup.size(); ++i)
        message[40 + i] = static_cast<std::byte>(setup[i]);
    message.insert(message.end(), data.begin(), data.end());
    isIn_[seqnum] = isIn;
    SendRaw(message);
    return seqnum;
}

std::uint32_t HostEnd::SubmitIn(std::uint32_t endpoint, std::uint32_t length, const SetupPacket &setup)
{
    return Send(1, true, endpoint, 0, length, setup, {});
}

std::uint32_t HostEnd::SubmitOut(std::uint32_t endpoint, const Bytes &data, const SetupPacket &setup)
{
    return Send(1, false, endpoint, 0, static_cast<std::uint32_t>(data.size()), setup, data);
}

std::uint32_t HostEnd::Unlink(std::uint32_t target) { return Send(2, false, 0, target, 0, {}, {}); }

Bytes HostEnd::Receive(std::size_t size)
{
    Bytes bytes(size);
    const ssize_t got = recv(socket_.Get(), bytes.data(), size, MSG_WAITALL);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

Answer HostEnd::Next()
{
    const Bytes header = Receive(48);
    if (header.size() != 48) {
        ADD_FAILURE() << "no answer";
        return {};
    }
    const auto word = [&](std::size_t at) { return LoadBe<std::uint32_t>(&header[at]); };
    Answer answer{word(0), word(4), static_cast<std::int32_t>(word(0x14)), word(0x18), {}};
    if (answer.command == 3 && isIn_[answer.seqnum] && answer.length != 0)
        answer.data = Receive(answer.length);
    return answer;
}

bool HostEnd::IsAtEnd()
{
    char byte;
    return recv(socket_.Get(), &byte, 1, 0) == 0;
}

Answer HostEnd::ControlIn(std::uint8_t type, std::uint8_t request, std::uint16_t value, std::uint16_t index,
                          std::uint16_t length)
{
    const auto low = [](unsigned word) { return static_cast<std::uint8_t>(word & 0xFF); };
    const std::uint32_t seqnum = SubmitIn(
        0, length,
        {type, request, low(value), low(value >> 8), low(index), low(index >> 8), low(length), low(length >> 8)});
    const Answer answer = Next();
    EXPECT_EQ(answer.command, 3u);
    EXPECT_EQ(answer.seqnum, seqnum);
    return answer;
}

Answer HostEnd::ControlOut(std::uint8_t type, std::uint8_t request, std::uint16_t value, std::uint16_t index)
{
    const auto low = [](unsigned word) { return static_cast<std::uint8_t>(word & 0xFF); };
    const std::uint32_t seqnum =
        SubmitOut(0, {}, {type, request, low(value), low(value >> 8), low(index), low(index >> 8), 0, 0});
    const Answer answer = Next();
    EXPECT_EQ(answer.command, 3u);
    EXPECT_EQ(answer.seqnum, seqnum);
    return answer;
}

SessionRig::SessionRig(Vcam::UsbFunction &device)
    : session_(std::make_unique<Session>(device, std::move(ends_.second))), thread_([this] {
          try {
              end_ = session_->Run(nullptr);
          } catch (const std::exception &fault) {
              fault_ = fault.what();
          }
          session_.reset();
      })
{
}

SessionRig::~SessionRig()
{
    host_.Close();
    AwaitEnd();
}

Session::End SessionRig::AwaitEnd()
{
    if (thread_.joinable())
        thread_.join();
    return end_;
}

} // namespace Orvi::UsbIp::Test
