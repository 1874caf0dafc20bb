#include "HostSide.h"

#include <algorithm>

namespace Orvi::Vcam::Test {
namespace {

class PacketRule : public testing::Test {
  protected:
    /// `size` bytes that count up.
    static std::vector<std::byte> Bytes(std::size_t size)
    {
        std::vector<std::byte> bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<std::byte>(i * 7);
        }
        return bytes;
    }
    bool Send(const std::vector<std::byte> &bytes, Ending ending = Ending::IfRoom)
    {
        Message message{.data = bytes, .ending = ending};
        return endpoint_.Send(message, endpoint_.Epoch());
    }

    int posted_ = 0;
    InEndpoint endpoint_{1024, [this] { ++posted_; }};
};

TEST_F(PacketRule, ShortPacketEndsTheTransfer)
{
    Transfer transfer(4096);
    endpoint_.Submit(transfer);
    const auto bytes = Bytes(1500);
    EXPECT_TRUE(Send(bytes));
    ASSERT_TRUE(transfer.IsDone());
    EXPECT_EQ(transfer.status, TransferStatus::Completed);
    EXPECT_TRUE(std::ranges::equal(transfer.Data(), bytes));
}

TEST_F(PacketRule, WholePacketsLeaveARoomierTransferOpen)
{
    Transfer transfer(4096);
    endpoint_.Submit(transfer);
    EXPECT_TRUE(Send(Bytes(2048), Ending::Open));
    EXPECT_FALSE(transfer.IsDone());
    EXPECT_TRUE(Send(Bytes(10)));
    ASSERT_TRUE(transfer.IsDone());
    EXPECT_EQ(transfer.received, 2058u);
}

TEST_F(PacketRule, ZeroLengthPacketEndsARoomierTransfer)
{
    Transfer transfer(4096);
    endpoint_.Submit(transfer);
    EXPECT_TRUE(Send(Bytes(2048), Ending::IfRoom));
    ASSERT_TRUE(transfer.IsDone());
    EXPECT_EQ(transfer.received, 2048u);
}

TEST_F(PacketRule, ZeroLengthPacketAfterAnExactlyFullTransferEndsTheNextOne)
{
    Transfer full(2048), next(1024);
    endpoint_.Submit(full);
    endpoint_.Submit(next);
    EXPECT_TRUE(Send(Bytes(2048), Ending::ZeroLength));
    EXPECT_EQ(full.received, 2048u);
    ASSERT_TRUE(next.IsDone());
    EXPECT_EQ(next.received, 0u);
    EXPECT_EQ(next.status, TransferStatus::Completed);
}

TEST_F(PacketRule, AcknowledgeOfExactlyTheTransfersSizeNeedsNoMore)
{
    Transfer full(1024), next(1024);
    endpoint_.Submit(full);
    endpoint_.Submit(next);
    EXPECT_TRUE(Send(Bytes(1024), Ending::IfRoom));
    EXPECT_TRUE(full.IsDone());
    EXPECT_FALSE(next.IsDone());
    EXPECT_TRUE(endpoint_.Cancel(next));
}

TEST_F(PacketRule, MessageGoesOnInTheNextTransfer)
{
    Transfer first(1024), second(1024);
    endpoint_.Submit(first);
    const auto bytes = Bytes(1100);
    Message message{.data = bytes};
    EXPECT_FALSE(endpoint_.Send(message, endpoint_.Epoch()));
    EXPECT_TRUE(first.IsDone());
    endpoint_.Submit(second);
    EXPECT_TRUE(endpoint_.Send(message, endpoint_.Epoch()));
    EXPECT_EQ(second.received, 76u);
    EXPECT_EQ(second.Data()[0], bytes[1024]);
}

TEST_F(PacketRule, PacketLargerThanTheRoomBabblesAndIsLost)
{
    Transfer small(1500), next(1024);
    endpoint_.Submit(small);
    endpoint_.Submit(next);
    const auto bytes = Bytes(2048 + 5);
    EXPECT_TRUE(Send(bytes));
    EXPECT_EQ(small.status, TransferStatus::Babble);
    EXPECT_EQ(small.received, 0u);
    // The second packet is the one that did not fit; the third one follows.
    EXPECT_EQ(next.received, 5u);
    EXPECT_EQ(next.Data()[0], bytes[2048]);
}

TEST_F(PacketRule, TransferWithoutRoomBabbles)
{
    Transfer none(0);
    endpoint_.Submit(none);
    EXPECT_TRUE(Send(Bytes(8)));
    EXPECT_EQ(none.Wait().status, TransferStatus::Babble);
}

TEST_F(PacketRule, HaltStallsPostedAndLaterTransfersUntilCleared)
{
    Transfer posted, later, after;
    endpoint_.Submit(posted);
    endpoint_.SetHalt();
    EXPECT_EQ(posted.Wait().status, TransferStatus::Stalled);
    endpoint_.Submit(later);
    EXPECT_EQ(later.Wait().status, TransferStatus::Stalled);
    EXPECT_FALSE(Send(Bytes(8)));
    endpoint_.ClearHalt();
    endpoint_.Submit(after);
    EXPECT_TRUE(Send(Bytes(8)));
    EXPECT_EQ(after.Wait().status, TransferStatus::Completed);
    EXPECT_EQ(posted_, 2); // nobody is told of a transfer that never waited
}

TEST_F(PacketRule, MessageOfAnEarlierEpochIsNotSent)
{
    const auto bytes = Bytes(8);
    Message message{.data = bytes};
    const std::uint64_t epoch = endpoint_.Epoch();
    endpoint_.ClearHalt();
    Transfer transfer;
    endpoint_.Submit(transfer);
    EXPECT_FALSE(endpoint_.Send(message, epoch));
    EXPECT_FALSE(transfer.IsDone());
    EXPECT_TRUE(endpoint_.Cancel(transfer));
}

TEST_F(PacketRule, CancelCompletesAPostedTransferOnceAndRefusesADoneOne)
{
    Transfer transfer(4096);
    endpoint_.Submit(transfer);
    EXPECT_TRUE(Send(Bytes(1024), Ending::Open));
    EXPECT_TRUE(endpoint_.Cancel(transfer));
    EXPECT_EQ(transfer.Wait().status, TransferStatus::Cancelled);
    EXPECT_EQ(transfer.received, 1024u);
    EXPECT_FALSE(endpoint_.Cancel(transfer));
}

TEST_F(PacketRule, GoneEndsPostedAndLaterTransfers)
{
    Transfer posted, later, after;
    endpoint_.Submit(posted);
    endpoint_.SetGone(true);
    EXPECT_EQ(posted.Wait().status, TransferStatus::Gone);
    endpoint_.Submit(later);
    EXPECT_EQ(later.Wait().status, TransferStatus::Gone);
    endpoint_.SetGone(false);
    endpoint_.Submit(after);
    EXPECT_FALSE(after.IsDone());
    EXPECT_TRUE(endpoint_.Cancel(after));
}

TEST_F(PacketRule, EveryTransferCompletesOnceWhenCancelsRaceWithData)
{
    // A transfer may be taken back while it is being filled: it ends exactly once, as filled or as cancelled.
    std::atomic<bool> isOver = false;
    std::thread sender([&] {
        const auto bytes = Bytes(1024);
        while (!isOver) {
            Message message{.data = bytes, .ending = Ending::Open};
            endpoint_.Send(message, endpoint_.Epoch());
        }
    });
    for (int round = 0; round < 2000; ++round) {
        Transfer transfer(4096);
        endpoint_.Submit(transfer);
        endpoint_.Cancel(transfer);
        transfer.Wait();
        EXPECT_TRUE(transfer.status == TransferStatus::Cancelled || transfer.received == 4096);
    }
    isOver = true;
    sender.join();
}

} // namespace
} // namespace Orvi::Vcam::Test
