#pragma once
// The host's end of a connection: what vhci_hcd of the kernel does, message by message.

#include "tools/vcam-usbip/Session.h"

#include "FakeFunction.h"

#include <gtest/gtest.h>

#include <thread>

namespace Orvi::UsbIp::Test {

/// A message of the device.
struct Answer {
    std::uint32_t command = 0; ///< 3 for a transfer, 4 for one that was to be taken back
    std::uint32_t seqnum = 0;
    std::int32_t status = 0;
    std::uint32_t length = 0;
    Bytes data;
};

class HostEnd {
  public:
    explicit HostEnd(Socket socket);

    /// These answer with the seqnum.
    std::uint32_t SubmitIn(std::uint32_t endpoint, std::uint32_t length, const SetupPacket &setup = {});
    std::uint32_t SubmitOut(std::uint32_t endpoint, const Bytes &data, const SetupPacket &setup = {});
    std::uint32_t Unlink(std::uint32_t target);
    void SendRaw(const Bytes &bytes);
    void Close() { socket_ = Socket(); }

    /// The next answer. In answers carry data as long as the transfer's seqnum says that it was an IN transfer.
    Answer Next();
    /// Whether the device has ended the connection and nothing more came.
    bool IsAtEnd();

    // Control transfers and what they bring.
    Answer ControlIn(std::uint8_t type, std::uint8_t request, std::uint16_t value, std::uint16_t index,
                     std::uint16_t length);
    Answer ControlOut(std::uint8_t type, std::uint8_t request, std::uint16_t value, std::uint16_t index);
    void Configure() { EXPECT_EQ(ControlOut(0x00, 9, 1, 0).status, 0); }

  private:
    std::uint32_t Send(std::uint32_t command, bool isIn, std::uint32_t endpoint, std::uint32_t word14,
                       std::uint32_t length, const SetupPacket &setup, const Bytes &data);
    Bytes Receive(std::size_t size);

    Socket socket_;
    std::uint32_t nextSeqnum_ = 100;
    std::map<std::uint32_t, bool> isIn_;
};

/// A session on a thread of its own and the host at its other end.
class SessionRig {
  public:
    explicit SessionRig(Vcam::UsbFunction &device);
    ~SessionRig();

    HostEnd &Host() { return host_; }
    Session &Device() { return *session_; }
    /// Waits for the end. The text is that of the fault, if it was one.
    Session::End AwaitEnd();
    const std::string &Fault() const { return fault_; }

  private:
    std::pair<Socket, Socket> ends_ = Socket::Pair();
    HostEnd host_{std::move(ends_.first)};
    std::unique_ptr<Session> session_;
    Session::End end_{};
    std::string fault_;
    std::thread thread_;
};

} // namespace Orvi::UsbIp::Test
