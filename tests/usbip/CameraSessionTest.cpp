// A virtual camera behind a session: the rules of packets arrive at the host as on a bus.

#include "HostEnd.h"
#include "tools/vcam-usbip/ExportedCamera.h"
#include "vcam/VirtualCamera.h"

namespace Orvi::UsbIp::Test {

namespace {

constexpr std::uint64_t s_unplug = 0x0F000000, s_siControl = 0x20004;

template <class T>
void Put(Bytes &to, T value)
{
    for (std::size_t i = 0; i < sizeof value; ++i)
        to.push_back(static_cast<std::byte>(value >> 8 * i & 0xFF));
}

Bytes Command(std::uint16_t id, std::uint16_t requestId, const Bytes &scd)
{
    Bytes command;
    Put<std::uint32_t>(command, 0x43563355);
    Put<std::uint16_t>(command, 0x4000);
    Put(command, id);
    Put(command, static_cast<std::uint16_t>(scd.size()));
    Put(command, requestId);
    command.insert(command.end(), scd.begin(), scd.end());
    return command;
}

Bytes ReadCommand(std::uint64_t address, std::uint16_t count)
{
    Bytes scd;
    Put(scd, address);
    Put<std::uint16_t>(scd, 0);
    Put(scd, count);
    return Command(0x0800, 1, scd);
}

Bytes WriteCommand(std::uint64_t address, std::uint32_t value)
{
    Bytes scd;
    Put(scd, address);
    Put(scd, value);
    return Command(0x0802, 2, scd);
}

class CameraSessionTest : public testing::Test {
  protected:
    CameraSessionTest()
    {
        Vcam::CameraConfig config;
        config.serial = "VC000009";
        config.sensorWidth = 64;
        config.sensorHeight = 32;
        camera = Vcam::VirtualCamera::Create(config);
    }

    std::shared_ptr<Vcam::VirtualCamera> camera;
};

} // namespace

TEST_F(CameraSessionTest, AcknowledgeEndsWithAShortPacket)
{
    SessionRig rig(*camera);
    rig.Host().Configure();
    rig.Host().SubmitIn(1, 4096);
    rig.Host().SubmitOut(1, ReadCommand(4, 64));
    EXPECT_EQ(rig.Host().Next().status, 0);
    const Answer ack = rig.Host().Next();
    EXPECT_EQ(ack.status, 0);
    ASSERT_EQ(ack.data.size(), 12u + 64u);
    EXPECT_EQ(Bytes(ack.data.begin() + 12, ack.data.begin() + 16), BytesOf("Orvi"));
}

TEST_F(CameraSessionTest, PacketLargerThanTheTransferIsBabble)
{
    SessionRig rig(*camera);
    rig.Host().Configure();
    const std::uint32_t transfer = rig.Host().SubmitIn(1, 20);
    rig.Host().SubmitOut(1, ReadCommand(4, 64));
    EXPECT_EQ(rig.Host().Next().status, 0);
    const Answer ack = rig.Host().Next();
    EXPECT_EQ(ack.seqnum, transfer);
    EXPECT_EQ(ack.status, -75);
    EXPECT_EQ(ack.length, 0u);
}

TEST_F(CameraSessionTest, WhatIsNoCommandHaltsBothEndpoints)
{
    SessionRig rig(*camera);
    rig.Host().Configure();
    const std::uint32_t in = rig.Host().SubmitIn(1, 1024);
    const std::uint32_t out = rig.Host().SubmitOut(1, BytesOf("?"));
    const Answer first = rig.Host().Next(), second = rig.Host().Next();
    EXPECT_EQ(first.seqnum, out);
    EXPECT_EQ(first.status, -32);
    EXPECT_EQ(second.seqnum, in);
    EXPECT_EQ(second.status, -32);
    for (const std::uint16_t endpoint : {std::uint16_t{0x01}, std::uint16_t{0x81}})
        EXPECT_EQ(rig.Host().ControlOut(0x02, 1, 0, endpoint).status, 0);
    rig.Host().SubmitIn(1, 1024);
    rig.Host().SubmitOut(1, ReadCommand(0, 4));
    EXPECT_EQ(rig.Host().Next().status, 0);
    EXPECT_EQ(rig.Host().Next().data.size(), 16u) << "cleared halts go on";
}

TEST_F(CameraSessionTest, PayloadOfWholePacketsEndsWithAZeroLengthPacket)
{
    SessionRig rig(*camera);
    HostEnd &host = rig.Host();
    host.Configure();
    const auto write = [&](std::uint64_t address, std::uint32_t value) {
        host.SubmitIn(1, 1024);
        host.SubmitOut(1, WriteCommand(address, value));
        EXPECT_EQ(host.Next().status, 0);
        const Answer ack = host.Next();
        ASSERT_GE(ack.data.size(), 12u);
        EXPECT_EQ(LoadBe<std::uint16_t>(&ack.data[4]), 0u) << std::hex << address;
    };
    // 64 x 32 bytes are two packets; the slot has room for four.
    for (const std::uint64_t size : {0x20018u, 0x2002Cu})
        write(size, 1024);
    write(0x2001C, 4096);
    write(0x20020, 1);
    write(s_siControl, 1);
    for (const std::uint32_t size : {1024u, 4096u, 1024u})
        host.SubmitIn(3, size);
    const std::uint32_t ack = host.SubmitIn(1, 1024);
    const std::uint32_t start = host.SubmitOut(1, WriteCommand(0x20303C, 8));
    std::vector<std::size_t> sizes;
    for (int i = 0; i < 5; ++i) {
        const Answer answer = host.Next();
        EXPECT_EQ(answer.status, 0);
        if (answer.seqnum != ack && answer.seqnum != start)
            sizes.push_back(answer.data.size());
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{52, 2048, 32})) << "leader, payload, trailer";
    write(s_siControl, 0);
}

TEST_F(CameraSessionTest, UnplugByRegisterIsAcknowledgedAndEndsTheConnection)
{
    SessionRig rig(*camera);
    rig.Host().Configure();
    const std::uint32_t in = rig.Host().SubmitIn(1, 1024), out = rig.Host().SubmitOut(1, WriteCommand(s_unplug, 1));
    EXPECT_EQ(rig.Host().Next().seqnum, out);
    EXPECT_EQ(rig.Host().Next().seqnum, in);
    EXPECT_TRUE(rig.Host().IsAtEnd());
    EXPECT_EQ(rig.AwaitEnd(), Session::End::DeviceGone);
}

TEST_F(CameraSessionTest, CameraStartsAnewForTheNextHost)
{
    ExportedCamera exported(camera);
    camera->PokeRegister(0x20303C, 8); // as the first host leaves it behind
    camera->PokeRegister(0x0F00000C, 1);
    ASSERT_TRUE(exported.Reserve());
    EXPECT_FALSE(exported.Reserve()) << "one host at a time";
    auto [ours, theirs] = Socket::Pair();
    ours = Socket();
    EXPECT_EQ(exported.Serve(std::move(theirs), nullptr), Session::End::HostLeft);
    EXPECT_EQ(camera->PeekRegister(0x0F00000C), 0u);
    EXPECT_TRUE(exported.Reserve());
}

TEST_F(CameraSessionTest, UnpluggedCameraIsAwaited)
{
    ExportedCamera exported(camera);
    camera->Unplug();
    EXPECT_FALSE(exported.Reserve());
    std::thread plugger([&] { camera->Plug(); });
    EXPECT_TRUE(exported.AwaitReplug());
    plugger.join();
    camera->Unplug();
    auto [ours, theirs] = Socket::Pair();
    EXPECT_EQ(exported.Serve(std::move(theirs), nullptr), Session::End::DeviceGone) << "left before the host came";
    std::thread stopper([&] { exported.Stop(); });
    EXPECT_FALSE(exported.AwaitReplug());
    stopper.join();
}

} // namespace Orvi::UsbIp::Test
