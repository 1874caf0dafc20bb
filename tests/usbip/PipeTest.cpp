// Transfers on bulk endpoints: order, endings, and taking them back while they end.

#include "HostEnd.h"

namespace Orvi::UsbIp::Test {

namespace {

constexpr std::int32_t s_stalled = -32, s_babble = -75, s_unlinked = -104;

class PipeTest : public testing::Test {
  protected:
    PipeTest() { host.Configure(); }

    void ExpectTransfer(std::uint32_t seqnum, std::int32_t status, const std::string &data)
    {
        const Answer answer = host.Next();
        EXPECT_EQ(answer.command, 3u);
        EXPECT_EQ(answer.seqnum, seqnum);
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.data, BytesOf(data));
        EXPECT_EQ(answer.length, data.size());
    }
    void ExpectUnlink(std::uint32_t seqnum, std::int32_t status)
    {
        const Answer answer = host.Next();
        EXPECT_EQ(answer.command, 4u);
        EXPECT_EQ(answer.seqnum, seqnum);
        EXPECT_EQ(answer.status, status);
    }

    FakeFunction device;
    SessionRig rig{device};
    HostEnd &host = rig.Host();
};

} // namespace

TEST_F(PipeTest, TransfersCarryWhatTheDeviceHasSent)
{
    const std::uint32_t first = host.SubmitIn(3, 8), second = host.SubmitIn(3, 8), third = host.SubmitIn(3, 0);
    device.End(Endpoint::StreamIn, 0, BytesOf("12345678"));
    device.End(Endpoint::StreamIn, 0, BytesOf(""));
    device.End(Endpoint::StreamIn, 0, BytesOf(""));
    ExpectTransfer(first, 0, "12345678");
    ExpectTransfer(second, 0, "");
    ExpectTransfer(third, 0, "");
}

TEST_F(PipeTest, EachEndpointAnswersInOrder)
{
    const std::uint32_t first = host.SubmitIn(3, 8), second = host.SubmitIn(3, 8), event = host.SubmitIn(2, 8);
    device.End(Endpoint::StreamIn, 1, BytesOf("second"));
    device.End(Endpoint::EventIn, 0, BytesOf("event"));
    ExpectTransfer(event, 0, "event"); // not held up by the other endpoint
    device.End(Endpoint::StreamIn, 0, BytesOf("first"));
    ExpectTransfer(first, 0, "first");
    ExpectTransfer(second, 0, "second");
}

TEST_F(PipeTest, BadEndings)
{
    const std::uint32_t first = host.SubmitIn(3, 8), second = host.SubmitIn(3, 8);
    device.End(Endpoint::StreamIn, 0, {}, TransferStatus::Babble);
    device.End(Endpoint::StreamIn, 0, BytesOf("abc"), TransferStatus::Stalled);
    ExpectTransfer(first, s_babble, "");
    ExpectTransfer(second, s_stalled, "abc");
}

TEST_F(PipeTest, TakenBackInTime)
{
    const std::uint32_t first = host.SubmitIn(3, 8), second = host.SubmitIn(3, 8);
    const std::uint32_t unlink = host.Unlink(second);
    ExpectUnlink(unlink, s_unlinked);
    device.End(Endpoint::StreamIn, 0, BytesOf("on"));
    ExpectTransfer(first, 0, "on");
    const std::uint32_t again = host.Unlink(second);
    ExpectUnlink(again, 0);
}

TEST_F(PipeTest, TakenBackTooLate)
{
    const std::uint32_t transfer = host.SubmitIn(3, 8);
    device.End(Endpoint::StreamIn, 0, BytesOf("done"));
    ExpectTransfer(transfer, 0, "done");
    const std::uint32_t unlink = host.Unlink(transfer);
    ExpectUnlink(unlink, 0);
    const std::uint32_t nonsense = host.Unlink(4711);
    ExpectUnlink(nonsense, 0);
}

TEST_F(PipeTest, TakenBackWhileItEndsIsAnsweredOnceAndFirst)
{
    device.grantsCancel = false;
    const std::uint32_t transfer = host.SubmitIn(3, 8), unlink = host.Unlink(transfer);
    device.AwaitCancel(Endpoint::StreamIn);
    device.End(Endpoint::StreamIn, 0, BytesOf("raced"));
    ExpectTransfer(transfer, 0, "raced");
    ExpectUnlink(unlink, 0);
}

TEST_F(PipeTest, TakenBackWhileItFailsToEnd)
{
    device.grantsCancel = false;
    const std::uint32_t transfer = host.SubmitIn(3, 8), unlink = host.Unlink(transfer);
    device.AwaitCancel(Endpoint::StreamIn);
    device.End(Endpoint::StreamIn, 0, {}, TransferStatus::Cancelled);
    ExpectUnlink(unlink, s_unlinked);
}

TEST_F(PipeTest, DataOfATransferThatIsTakenBackIsNotLost)
{
    device.grantsCancel = false;
    const std::uint32_t transfer = host.SubmitIn(3, 8), unlink = host.Unlink(transfer);
    device.AwaitCancel(Endpoint::StreamIn);
    device.End(Endpoint::StreamIn, 0, BytesOf("part"), TransferStatus::Cancelled);
    ExpectTransfer(transfer, s_unlinked, "part");
    ExpectUnlink(unlink, 0);
}

TEST_F(PipeTest, CommandsReachTheDeviceWhole)
{
    Bytes got;
    device.onOut = [&](const Bytes &data) {
        got = data;
        return TransferStatus::Completed;
    };
    const Bytes command(200'000, std::byte{0x5A}); // more than a socket takes at once
    const std::uint32_t transfer = host.SubmitOut(1, command);
    const Answer answer = host.Next();
    EXPECT_EQ(answer.seqnum, transfer);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.length, command.size());
    EXPECT_EQ(got, command);
    device.onOut = [](const Bytes &data) { return data.empty() ? TransferStatus::Stalled : TransferStatus::Completed; };
    host.SubmitOut(1, {});
    EXPECT_EQ(host.Next().status, s_stalled);
    EXPECT_EQ(host.ControlIn(0x82, 0, 0, 0x01, 2).data.at(0), std::byte{1}) << "the endpoint is halted";
}

TEST_F(PipeTest, CommandIsDoneBeforeItsAcknowledgeArrives)
{
    device.onOut = [&](const Bytes &) {
        device.End(Endpoint::ControlIn, 0, BytesOf("ack"));
        return TransferStatus::Completed;
    };
    const std::uint32_t ack = host.SubmitIn(1, 64), command = host.SubmitOut(1, BytesOf("command"));
    const Answer first = host.Next(), second = host.Next();
    EXPECT_EQ(first.seqnum, command);
    EXPECT_EQ(second.seqnum, ack);
}

TEST_F(PipeTest, CommandThatUnplugsIsStillAcknowledged)
{
    device.onOut = [&](const Bytes &) {
        device.End(Endpoint::ControlIn, 0, BytesOf("ack"));
        device.Unplug();
        return TransferStatus::Completed;
    };
    const std::uint32_t ack = host.SubmitIn(1, 64), command = host.SubmitOut(1, BytesOf("unplug"));
    const Answer first = host.Next(), second = host.Next();
    EXPECT_EQ(first.seqnum, command);
    EXPECT_EQ(second.seqnum, ack);
    EXPECT_EQ(second.data, BytesOf("ack"));
    EXPECT_TRUE(host.IsAtEnd());
    EXPECT_EQ(rig.AwaitEnd(), Session::End::DeviceGone);
}

TEST_F(PipeTest, HostThatReadsNothingHoldsUpNobody)
{
    constexpr std::size_t size = 1 << 20;
    for (int i = 0; i < 8; ++i)
        host.SubmitIn(3, size);
    for (int i = 0; i < 8; ++i)
        device.End(Endpoint::StreamIn, 0, Bytes(size)); // returns although the socket is full
    rig.Device().Stop();
    EXPECT_EQ(rig.AwaitEnd(), Session::End::Stopped);
}

} // namespace Orvi::UsbIp::Test
