// How acquisitions and streams end.

#include "StreamingFixture.h"

namespace Orvi::Vcam::Test {
namespace {

/// What ends an acquisition, and whether it is over before the image under way has been fetched.
struct EndCase {
    const char *name;
    std::uint32_t command;
    bool isActive;
};

class StreamingEnds : public Streaming, public testing::WithParamInterface<EndCase> {};
INSTANTIATE_TEST_SUITE_P(Commands, StreamingEnds,
                         testing::Values(EndCase{"Stop", AcquisitionCommand::Stop, true},
                                         EndCase{"Abort", AcquisitionCommand::Abort, false}),
                         [](const auto &row) { return row.param.name; });

TEST_P(StreamingEnds, FrameUnderWayIsFinishedAndNoMoreIsTaken)
{
    Transfer leader(1024);
    BeginFrame(leader);
    control_.Write(Block::AcquisitionCommand + 0x1C, GetParam().command);
    EXPECT_EQ(control_.Read(Reg::AcquisitionActive), GetParam().isActive ? 1u : 0u);
    Transfer payload(stream_.SimpleCut().size), trailer(1024), none(1024);
    Submit({&payload, &trailer, &none});
    EXPECT_EQ(LoadLe<std::uint64_t>(trailer.Wait().Data().data() + 20), payload.Wait().received);
    EXPECT_EQ(trailer.received, 32u);
    EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::AcquisitionActive) == 0; }));
    EXPECT_FALSE(none.IsDone());
    EXPECT_TRUE(camera_->Cancel(Endpoint::StreamIn, none));
}

TEST_F(Streaming, DisablingDropsWhatIsQueuedAndLeavesTransfersPending)
{
    Transfer leader(1024);
    BeginFrame(leader);
    control_.Write(Reg::SiControl, 0);
    EXPECT_EQ(control_.Read(Reg::AcquisitionActive), 0u);
    // The rest of the frame does not come: the next transfer gets the next stream's leader.
    stream_.Post();
    Begin();
    EXPECT_EQ(stream_.Take().block, 0u);
}

TEST_F(Streaming, StreamStartsAndStopsManyTimes)
{
    stream_.Configure(stream_.SimpleCut());
    for (int round = 0; round < 300; ++round) {
        stream_.Post();
        stream_.Post();
        Begin();
        EXPECT_EQ(stream_.Take().block, 0u);
        if (round % 2 == 0) {
            control_.Write(Block::AcquisitionCommand + 0x1C, 1);
        }
        control_.Write(Reg::SiControl, 0);
        stream_.CancelAll();
    }
}

TEST_F(Streaming, HaltWhileStreamingStallsAndTheClearedEndpointBeginsWithALeader)
{
    stream_.Configure({16384, 4, 12288, 0});
    Transfer leader(1024), payload(16384), stalled(16384);
    camera_->Submit(Endpoint::StreamIn, leader);
    camera_->Submit(Endpoint::StreamIn, payload);
    Begin();
    payload.Wait();
    camera_->SetHalt(Endpoint::StreamIn);
    camera_->Submit(Endpoint::StreamIn, stalled);
    EXPECT_EQ(stalled.Wait().status, TransferStatus::Stalled);
    camera_->ClearHalt(Endpoint::StreamIn);
    stream_.Post();
    EXPECT_EQ(stream_.Take().block, 1u);
    EXPECT_EQ(camera_->DroppedBlocks(), 1u);
}

} // namespace
} // namespace Orvi::Vcam::Test
