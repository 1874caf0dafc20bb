// Images that go wrong on their way: how the request that was to carry one completes, and that the next one is good.

#include "tests/e2e/FaultTest.h"

#include <algorithm>

namespace Orvi::Testing {

namespace {

constexpr uint64_t faulty = 3; // the block that something happens to
constexpr uint32_t payload = 64 * 8;

} // namespace

class FaultStreamTest : public FaultTest {
  protected:
    FaultStreamTest() : droppedBefore(ReadWord(hCam, Virtual::droppedBlocks)) {}

    /// Blocks that the camera itself counts as lost in this test.
    uint32_t Dropped() const { return ReadWord(hCam, Virtual::droppedBlocks) - droppedBefore; }

    /// Streams with a fault armed: the good frames before the faulty one, then the request after them.
    Received TakeUpToFault(RequestChannel &channel)
    {
        channel.EnqueueAll();
        channel.Start();
        for (uint64_t block = 0; block < faulty; ++block) {
            ExpectGood(seen.emplace_back(Take(channel)), block);
        }
        return seen.emplace_back(Take(channel));
    }

    static void ExpectGood(const Received &received, uint64_t block)
    {
        EXPECT_EQ(received.status, 0u) << "block " << block;
        EXPECT_EQ(received.block, block);
        EXPECT_EQ(received.lost, 0u) << "block " << block;
        EXPECT_EQ(received.valid, payload);
        EXPECT_TRUE(received.isWhole) << "block " << block;
    }

    /// After the fault come good frames in a row. While the stream comes into step again, further ones may be lost.
    void ExpectGoodAgain(RequestChannel &channel)
    {
        constexpr unsigned enough = 10, most = 50;
        uint64_t next = 0;
        for (unsigned good = 0, taken = 0; good < enough && !HasFailure(); ++taken) {
            ASSERT_LT(taken, most);
            const Received received = seen.emplace_back(Take(channel));
            if (received.status == 0 && received.block == next) {
                ExpectGood(received, next);
                ++good;
            } else {
                EXPECT_TRUE(received.status == 0 || received.status == CAM_API_STS_MISSING_PACKETS)
                    << std::hex << received.status;
                good = 0;
            }
            next = received.block + 1;
        }
        EXPECT_EQ(channel.LostCount(), MissingBlocks(seen)) << "each block is told of by a request, or is counted";
        channel.Stop();
        channel.Flush();
    }

    const uint32_t droppedBefore;
    std::vector<Received> seen;
};

TEST_F(FaultStreamTest, LostFramesAreCountedAsTheCameraCountsThem)
{
    Arm({.every = 5, .action = FaultAction::LoseFrame});
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    for (const uint64_t block : {0, 1, 2, 3, 4, 6, 7, 8, 9, 11, 12, 13, 14, 16}) {
        Received received = Take(channel);
        EXPECT_EQ(received.lost, block > 5 && block % 5 == 1 ? 1u : 0u) << "before block " << block;
        received.lost = 0;
        ExpectGood(received, block);
    }
    channel.Stop();
    channel.Flush();
    while (channel.TryNext()) {
    }
    EXPECT_EQ(channel.LostCount(), Dropped());
    EXPECT_GE(channel.LostCount(), 3u);
}

TEST_F(FaultStreamTest, SeveralLostInARowAreCountedAtOnce)
{
    for (const uint64_t block : {3, 4, 5}) {
        Arm({.at = block, .action = FaultAction::LoseFrame});
    }
    RequestChannel channel(hCam, 2);
    Received after = TakeUpToFault(channel);
    EXPECT_EQ(after.lost, 3u);
    after.lost = 0;
    ExpectGood(after, 6);
    EXPECT_EQ(channel.LostCount(), 3u);
    EXPECT_EQ(Dropped(), 3u);
    ExpectGoodAgain(channel);
    EXPECT_EQ(channel.LostCount(), 3u);
}

TEST_F(FaultStreamTest, ShortPayloadThatTheTrailerTellsOfIsAShorterImage)
{
    Arm({.at = faulty, .action = FaultAction::Truncate, .amount = 200}); // 3 lines and a bit
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, 0u);
    EXPECT_EQ(received.block, faulty);
    EXPECT_EQ(received.valid, 200u);
    EXPECT_EQ(received.height, 3u);
    ExpectGoodAgain(channel);
    EXPECT_EQ(channel.LostCount(), 0u);
}

TEST_F(FaultStreamTest, PayloadShorterThanTheTrailerClaimsHasMissingPackets)
{
    Arm({.at = faulty, .action = FaultAction::CutPayload, .amount = 200});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
    EXPECT_EQ(received.block, faulty);
    EXPECT_EQ(received.valid, 200u);
    ExpectGoodAgain(channel);
    EXPECT_EQ(channel.LostCount(), 0u);
}

TEST_F(FaultStreamTest, PartOfTheImageIsDeliveredAsItArrived)
{
    Arm({.at = faulty, .action = FaultAction::CutPayload, .amount = 100});
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    Delivered done = channel.Next();
    while (done.info.ullBlockId != faulty) {
        channel.Enqueue(done.hRequest);
        done = channel.Next();
    }
    EXPECT_EQ(done.info.uiStatus, CAM_API_STS_MISSING_PACKETS);
    ASSERT_EQ(done.size, 100u);
    EXPECT_EQ(DrawnBlockId(done.image), faulty);
    EXPECT_EQ(done.info.uiWidth, 64u);
    EXPECT_EQ(done.info.uiPixelFormat, 0x01080001u);
    channel.Stop();
}

TEST_F(FaultStreamTest, PayloadWithoutAByteHasMissingPackets)
{
    Arm({.at = faulty, .action = FaultAction::CutPayload, .amount = 0});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
    EXPECT_EQ(received.block, faulty);
    EXPECT_EQ(received.valid, 0u);
    ExpectGoodAgain(channel);
}

TEST_F(FaultStreamTest, TheTrailersStatusIsTheRequests)
{
    struct Row {
        uint16_t told;
        uint32_t seen;
    };
    for (const Row &row :
         {Row{0xA100, CAM_API_STS_DATA_DISCARDED}, Row{0xA101, 0xA101}, Row{0x8FFF, CAM_API_STS_PACKET_STATUS_ERROR}}) {
        SCOPED_TRACE(row.told);
        seen.clear();
        Arm({.at = faulty, .action = FaultAction::TrailerStatus, .amount = row.told});
        RequestChannel channel(hCam, 3);
        const Received received = TakeUpToFault(channel);
        EXPECT_EQ(received.status, row.seen);
        EXPECT_EQ(received.block, faulty);
        EXPECT_EQ(received.valid, payload);
        EXPECT_TRUE(received.isWhole) << "the bytes that did arrive";
        ExpectGoodAgain(channel);
        EXPECT_EQ(channel.LostCount(), 0u);
        DisarmFaults(hCam);
    }
}

TEST_F(FaultStreamTest, DiscardedDataAreTheBytesThatArrived)
{
    Arm({.at = faulty, .action = FaultAction::TrailerStatus, .amount = 0xA100});
    Arm({.at = faulty, .action = FaultAction::Truncate, .amount = 300});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, CAM_API_STS_DATA_DISCARDED);
    EXPECT_EQ(received.valid, 300u);
    ExpectGoodAgain(channel);
    EXPECT_EQ(channel.LostCount(), 0u);
}

TEST_F(FaultStreamTest, WithoutALeaderNobodyKnowsWhichBlockItWas)
{
    for (const FaultAction action : {FaultAction::LoseLeader, FaultAction::BadLeader}) {
        SCOPED_TRACE(NameOf(action));
        seen.clear();
        Arm({.at = faulty, .action = action});
        RequestChannel channel(hCam, 3);
        const Received received = TakeUpToFault(channel);
        EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
        EXPECT_EQ(received.block, 0u);
        EXPECT_EQ(received.valid, 0u);
        ExpectGoodAgain(channel);
        EXPECT_GE(channel.LostCount(), 1u) << "its block is among the lost";
        DisarmFaults(hCam);
    }
    EXPECT_NE(log.Text().find("out of step"), std::string::npos) << log.Text();
}

TEST_F(FaultStreamTest, WithoutATrailerTheImageMayLackSomething)
{
    for (const FaultAction action : {FaultAction::LoseTrailer, FaultAction::BadTrailer}) {
        SCOPED_TRACE(NameOf(action));
        seen.clear();
        Arm({.at = faulty, .action = action});
        RequestChannel channel(hCam, 3);
        const Received received = TakeUpToFault(channel);
        EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
        EXPECT_EQ(received.block, faulty);
        EXPECT_EQ(received.valid, payload);
        EXPECT_TRUE(received.isWhole);
        ExpectGoodAgain(channel);
        DisarmFaults(hCam);
    }
    EXPECT_NE(log.Text().find("stream of VC000001 out of step at block 3"), std::string::npos) << log.Text();
}

TEST_F(FaultStreamTest, RequestWhoseTrailerNeverComesCanBeFlushed)
{
    Arm({.at = 0, .action = FaultAction::LoseTrailer});
    SetInt(hCam, "AcquisitionFrameCount", 1);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    EXPECT_EQ(Strm_Start(channel.Stream(), CAM_ACQ_MODE_MULTI_FRAME), 0u);
    for (uint32_t waited = 0; Acted() == 0 && waited < patience; ++waited) {
    }
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
    channel.Flush();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(channel.Next().info.uiStatus, CAM_API_STS_FLUSH_REQUESTED);
    }
    EXPECT_FALSE(channel.TryNext());
}

TEST_F(FaultStreamTest, TrailerOfAnotherBlockIsNotTheImages)
{
    Arm({.at = faulty, .action = FaultAction::ShiftTrailerId, .amount = 1});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
    EXPECT_EQ(received.block, faulty);
    EXPECT_EQ(received.valid, payload);
    ExpectGoodAgain(channel);
}

TEST_F(FaultStreamTest, BlockIdThatGoesBackIsDeliveredAndLosesNothing)
{
    Arm({.at = faulty, .action = FaultAction::ShiftBlockId, .amount = -2});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, 0u);
    EXPECT_EQ(received.block, faulty - 2);
    EXPECT_EQ(received.lost, 0u);
    for (uint64_t block = faulty + 1; block < faulty + 5; ++block) {
        ExpectGood(Take(channel), block);
    }
    EXPECT_EQ(channel.LostCount(), 0u);
    channel.Stop();
}

TEST_F(FaultStreamTest, BlockIdThatGoesForwardCountsTheBlocksThatItSkips)
{
    Arm({.at = faulty, .action = FaultAction::ShiftBlockId, .amount = 1000});
    RequestChannel channel(hCam, 3);
    const Received received = TakeUpToFault(channel);
    EXPECT_EQ(received.status, 0u);
    EXPECT_EQ(received.block, faulty + 1000);
    EXPECT_EQ(received.lost, 1000u);
    for (uint64_t block = faulty + 1; block < faulty + 5; ++block) {
        ExpectGood(Take(channel), block);
    }
    EXPECT_EQ(channel.LostCount(), 1000u) << "not known before, and not again";
    channel.Stop();
}

TEST_F(FaultStreamTest, StalledEndpointIsClearedAndTheStreamGoesOn)
{
    struct Row {
        int64_t at;
        uint64_t block, valid;
    };
    for (const Row &row : {Row{0, 0, 0}, Row{100, faulty, 100}}) {
        SCOPED_TRACE(row.at);
        seen.clear();
        Arm({.at = faulty, .action = FaultAction::StallStream, .amount = row.at});
        RequestChannel channel(hCam, 3);
        const Received received = TakeUpToFault(channel);
        EXPECT_EQ(received.status, CAM_API_STS_MISSING_PACKETS);
        EXPECT_EQ(received.block, row.block) << "as far as the leader has told";
        EXPECT_EQ(received.valid, row.valid);
        ExpectGoodAgain(channel);
        DisarmFaults(hCam);
    }
    EXPECT_NE(log.Text().find("out of step"), std::string::npos) << log.Text();
}

TEST_F(FaultStreamTest, EndpointThatStallsAgainAndAgainEndsNothing)
{
    Arm({.probability = 0.5, .action = FaultAction::StallStream});
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    unsigned good = 0;
    while (good < 10 && !HasFailure()) {
        const Received received = Take(channel);
        seen.push_back(received);
        good += received.status == 0 ? 1 : 0;
    }
    EXPECT_EQ(channel.LostCount(), MissingBlocks(seen));
    channel.Stop();
    channel.Flush();
}

TEST_F(FaultStreamTest, SeedAndRuleDecideWhichFramesAreLost)
{
    std::vector<uint64_t> blocks[2];
    for (std::vector<uint64_t> &some : blocks) {
        Arm({.probability = 0.3, .action = FaultAction::LoseFrame});
        RequestChannel channel(hCam, 3);
        channel.EnqueueAll();
        channel.Start();
        for (const Received &received : Take(channel, 30)) {
            some.push_back(received.block);
        }
        channel.Stop();
        DisarmFaults(hCam);
    }
    EXPECT_EQ(blocks[0], blocks[1]);
    EXPECT_GT(blocks[0].back(), 30u);
}

TEST_F(FaultStreamTest, WrittenRegisterTriggersAnImage)
{
    SetEnum(hCam, "TriggerMode", "On");
    SetEnum(hCam, "TriggerSource", "Line0");
    constexpr uint64_t ordinary = 0x1E8;
    Arm({.moment = FaultMoment::Write, .address = ordinary, .value = 8, .action = FaultAction::Trigger});
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    for (uint64_t block = 0; block < 3; ++block) {
        WriteWord(hCam, ordinary, 7); // no trigger
        WriteWord(hCam, ordinary, 8);
        ExpectGood(Take(channel), block);
    }
    channel.Stop();
    SetEnum(hCam, "TriggerMode", "Off");
}

} // namespace Orvi::Testing
