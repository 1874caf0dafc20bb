// How the payload is cut into transfers.

#include "StreamingFixture.h"

namespace Orvi::Vcam::Test {
namespace {

struct CutCase {
    const char *name;
    std::uint32_t width, height;
    Cut cut;
};

class StreamingCuts : public Streaming, public testing::WithParamInterface<CutCase> {};

TEST_P(StreamingCuts, PayloadArrivesWholeHoweverItIsCut)
{
    control_.Write(ImageSizeWord::Width, GetParam().width);
    control_.Write(ImageSizeWord::Height, GetParam().height);
    stream_.Configure(GetParam().cut);
    stream_.Post();
    stream_.Post();
    Begin();
    EXPECT_EQ(stream_.Take().image, Reference(0));
    EXPECT_EQ(stream_.Take().image, Reference(1));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cuts, StreamingCuts, testing::Values(
    CutCase{"OneRoomyTransfer",           100,  50, {8192, 1, 0, 0}},
    CutCase{"OneExactTransfer",           100,  50, {5000, 1, 0, 0}},
    CutCase{"OneExactTransferOfPackets",  256,  64, {16384, 1, 0, 0}},
    CutCase{"RoomyTransferOfPackets",     256,  64, {32768, 1, 0, 0}}, // ends with a zero-length packet
    CutCase{"ManyWithSlackInFinal1",      316, 202, {16384, 3, 15360, 0}},
    CutCase{"Final1DownFinal2Rest",       316, 202, {16384, 3, 14336, 1024}},
    CutCase{"FinalTransfersAlone",        100,  50, {0, 0, 4096, 1024}},
    CutCase{"Final2Alone",                100,  50, {1024, 4, 0, 1024}},
    CutCase{"RestOfWholePackets",         256,  60, {8192, 1, 8192, 0}}),
    [](const auto &cut) { return cut.param.name; });
// clang-format on

TEST_F(Streaming, SlotsWithoutDataAreSkipped)
{
    control_.Write(ImageSizeWord::Width, 100);
    control_.Write(ImageSizeWord::Height, 10); // 1000 bytes: the first slot holds them all
    stream_.Configure({1024, 3, 1024, 0});
    Transfer leader(1024), payload(1024), trailer(1024);
    Submit({&leader, &payload, &trailer});
    Begin();
    EXPECT_EQ(leader.Wait().received, 52u);
    EXPECT_EQ(payload.Wait().received, 1000u);
    EXPECT_EQ(trailer.Wait().received, 32u);
}

TEST_F(Streaming, TransferTooSmallForAPacketBabbles)
{
    stream_.Configure(stream_.SimpleCut());
    Transfer leader(40), next(1024);
    camera_->Submit(Endpoint::StreamIn, leader);
    Begin();
    EXPECT_EQ(leader.Wait().status, TransferStatus::Babble);
}

} // namespace
} // namespace Orvi::Vcam::Test
