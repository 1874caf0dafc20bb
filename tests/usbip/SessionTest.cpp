// Standard requests, the end of a connection, and what is no USB/IP.

#include "HostEnd.h"

#include <sstream>

namespace Orvi::UsbIp::Test {

namespace {

class SessionTest : public testing::Test {
  protected:
    FakeFunction device;
    SessionRig rig{device};
    HostEnd &host = rig.Host();
};

Bytes Numbers(std::initializer_list<unsigned> numbers)
{
    Bytes bytes;
    for (const unsigned number : numbers)
        bytes.push_back(static_cast<std::byte>(number));
    return bytes;
}

} // namespace

TEST_F(SessionTest, ConfigurationIsChosenAndTold)
{
    EXPECT_EQ(host.ControlIn(0x80, 8, 0, 0, 1).data, Numbers({0}));
    host.Configure();
    EXPECT_EQ(host.ControlIn(0x80, 8, 0, 0, 1).data, Numbers({1}));
    EXPECT_EQ(host.ControlOut(0x00, 9, 2, 0).status, -32) << "there is one";
    EXPECT_EQ(host.ControlIn(0x80, 8, 0, 0, 1).data, Numbers({1}));
    EXPECT_EQ(device.Halts(), (std::vector<std::string>{"-01", "-81", "-82", "-83"}));
}

TEST_F(SessionTest, BulkEndpointsAreThereWhenConfigured)
{
    host.SubmitIn(3, 64);
    EXPECT_EQ(host.Next().status, -32);
    host.SubmitOut(1, BytesOf("x"));
    EXPECT_EQ(host.Next().status, -32);
    host.Configure();
    host.SubmitIn(4, 64);
    EXPECT_EQ(host.Next().status, -32) << "no such endpoint";
    host.SubmitOut(3, BytesOf("x"));
    EXPECT_EQ(host.Next().status, -32) << "an IN endpoint";
    host.SubmitOut(1, BytesOf("x"));
    EXPECT_EQ(host.Next().status, 0);
}

TEST_F(SessionTest, HaltsAreSetClearedAndTold)
{
    host.Configure();
    const auto status = [&] { return host.ControlIn(0x82, 0, 0, 0x83, 2).data; };
    EXPECT_EQ(status(), Numbers({0, 0}));
    EXPECT_EQ(host.ControlOut(0x02, 3, 0, 0x83).status, 0);
    EXPECT_EQ(status(), Numbers({1, 0}));
    EXPECT_EQ(host.ControlOut(0x02, 1, 0, 0x83).status, 0);
    EXPECT_EQ(status(), Numbers({0, 0}));
    const auto halts = device.Halts();
    EXPECT_EQ(std::vector(halts.begin() + 4, halts.end()), (std::vector<std::string>{"+83", "-83"}));
    host.SubmitIn(3, 64);
    device.End(Endpoint::StreamIn, 0, {}, TransferStatus::Stalled);
    EXPECT_EQ(host.Next().status, -32);
    EXPECT_EQ(status(), Numbers({1, 0})) << "a halt that the device began";
    EXPECT_EQ(host.ControlOut(0x01, 11, 0, 2).status, 0) << "choosing a setting ends the halts of its endpoints";
    EXPECT_EQ(status(), Numbers({0, 0}));
}

TEST_F(SessionTest, OtherStandardRequests)
{
    EXPECT_EQ(host.ControlIn(0x80, 0, 0, 0, 2).data, Numbers({0, 0}));
    EXPECT_EQ(host.ControlOut(0x00, 3, 48, 0).status, 0); // U1
    EXPECT_EQ(host.ControlOut(0x00, 3, 50, 0).status, 0); // latency messages
    EXPECT_EQ(host.ControlIn(0x80, 0, 0, 0, 2).data, Numbers({0x14, 0}));
    EXPECT_EQ(host.ControlOut(0x00, 1, 48, 0).status, 0);
    EXPECT_EQ(host.ControlIn(0x80, 0, 0, 0, 2).data, Numbers({0x10, 0}));
    EXPECT_EQ(host.ControlIn(0x81, 0, 0, 2, 2).data, Numbers({0, 0}));
    EXPECT_EQ(host.ControlIn(0x81, 10, 0, 1, 1).data, Numbers({0}));
    EXPECT_EQ(host.ControlOut(0x00, 0x31, 40, 0).status, 0) << "SET_ISOCH_DELAY";
    host.SubmitOut(0, Bytes(6), {0x00, 0x30, 0, 0, 0, 0, 6, 0});
    const Answer latency = host.Next();
    EXPECT_EQ(latency.status, 0) << "SET_SEL";
    EXPECT_EQ(latency.length, 6u);
}

TEST_F(SessionTest, UnknownRequestsStall)
{
    EXPECT_EQ(host.ControlIn(0xC0, 1, 0, 0, 4).status, -32) << "a maker's own";
    EXPECT_EQ(host.ControlOut(0x00, 3, 1, 0).status, -32) << "remote wake-up";
    EXPECT_EQ(host.ControlOut(0x01, 11, 1, 0).status, -32) << "a setting that is not there";
    EXPECT_EQ(host.ControlOut(0x01, 11, 0, 3).status, -32) << "an interface that is not there";
    EXPECT_EQ(host.ControlOut(0x02, 3, 0, 0x84).status, -32) << "an endpoint that is not there";
    EXPECT_EQ(host.ControlIn(0x82, 0, 0, 0x02, 2).status, -32);
    EXPECT_EQ(host.ControlIn(0x80, 8, 0, 0, 1).status, 0) << "and the next is answered";
}

TEST_F(SessionTest, EndsWhenTheHostLeaves)
{
    host.Configure();
    host.SubmitIn(3, 64);
    device.AwaitPosted(Endpoint::StreamIn, 1);
    host.Close();
    EXPECT_EQ(rig.AwaitEnd(), Session::End::HostLeft);
    EXPECT_EQ(rig.Fault(), "");
    EXPECT_FALSE(device.IsObserved());
}

TEST_F(SessionTest, EndsWhenStopped)
{
    host.Configure();
    host.SubmitIn(2, 64);
    device.AwaitPosted(Endpoint::EventIn, 1);
    rig.Device().Stop();
    EXPECT_EQ(rig.AwaitEnd(), Session::End::Stopped);
    EXPECT_TRUE(host.IsAtEnd());
}

TEST_F(SessionTest, AnUnpluggedDeviceAnswersNothingMore)
{
    host.Configure();
    host.SubmitIn(1, 64);
    host.SubmitIn(3, 64);
    device.AwaitPosted(Endpoint::StreamIn, 1);
    device.Unplug();
    EXPECT_EQ(rig.AwaitEnd(), Session::End::DeviceGone);
    EXPECT_TRUE(host.IsAtEnd()) << "transfers end with the connection";
}

TEST_F(SessionTest, WhatIsNoUsbIpEndsTheConnection)
{
    const struct {
        std::uint32_t command, direction, endpoint, length, packets;
        const char *fault;
    } rows[] = {
        {7, 0, 0, 0, 0, "unknown command 7"},
        {1, 2, 1, 0, 0, "transfer 5 is for no endpoint of USB"},
        {1, 1, 16, 0, 0, "transfer 5 is for no endpoint of USB"},
        {1, 1, 1, 0x80000000, 0, "transfer 5 has a buffer of 2147483648 bytes"},
        {1, 1, 1, 64, 8, "transfer 5 is isochronous; the camera has bulk endpoints"},
    };
    for (const auto &row : rows) {
        SessionRig other(device);
        Bytes message(48);
        const std::uint32_t words[] = {row.command, 5,          0, row.direction, row.endpoint,
                                       0,           row.length, 0, row.packets,   0};
        for (std::size_t i = 0; i < std::size(words); ++i)
            StoreBe(&message[4 * i], words[i]);
        other.Host().SendRaw(message);
        other.AwaitEnd();
        EXPECT_EQ(other.Fault(), row.fault);
        EXPECT_TRUE(other.Host().IsAtEnd());
    }
}

TEST_F(SessionTest, AMessageThatBreaksOffIsAFault)
{
    host.SendRaw(Bytes(20));
    host.Close();
    rig.AwaitEnd();
    EXPECT_EQ(rig.Fault(), "the connection ended within a message");
}

} // namespace Orvi::UsbIp::Test
