// Images on their way to the host.

#include "StreamingFixture.h"

namespace Orvi::Vcam::Test {
namespace {

TEST_F(Streaming, BlocksCountFromZeroWithEachEnable)
{
    stream_.Configure(stream_.SimpleCut());
    for (int round = 0; round < 3; ++round) {
        Post(4);
        Begin();
        std::uint64_t lastTime = 0;
        for (std::uint64_t block = 0; block < 4; ++block) {
            const Frame frame = stream_.Take();
            EXPECT_EQ(frame.block, block);
            EXPECT_GE(frame.time, lastTime);
            lastTime = frame.time;
        }
        control_.Write(Reg::SiControl, 0);
    }
    EXPECT_EQ(camera_->DroppedBlocks(), 0u);
}

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

TEST_F(Streaming, FrameTimesAreThoseOfTheCamerasClock)
{
    stream_.Configure(stream_.SimpleCut());
    stream_.Post();
    stream_.Enable();
    control_.Write(Reg::TimestampLatch, 1);
    const std::uint64_t before = control_.ReadLong(Reg::Timestamp);
    stream_.Start();
    const std::uint64_t time = stream_.Take().time;
    control_.Write(Reg::TimestampLatch, 1);
    EXPECT_GE(time, before);
    EXPECT_LE(time, control_.ReadLong(Reg::Timestamp));
}

TEST_F(Streaming, FramesComeAtTheFrameRate)
{
    Throttle(50000);
    stream_.Configure(stream_.SimpleCut());
    constexpr int count = 6;
    Post(count);
    Begin();
    const std::uint64_t first = stream_.Take().time;
    std::uint64_t last = first;
    for (int i = 1; i < count; ++i) {
        last = stream_.Take().time;
    }
    // A busy machine may be late, never early: five periods of 20 ms lie between, the first may start late.
    EXPECT_GE(last - first, 4u * 20000000);
}

TEST_F(Streaming, ExposureLongerThanThePeriodSlowsTheCameraDown)
{
    Throttle(1000000);
    control_.Write(Block::ExposureTime + 0x1C, 30000);
    stream_.Configure(stream_.SimpleCut());
    Post(3);
    Begin();
    const std::uint64_t first = stream_.Take().time;
    stream_.Take();
    EXPECT_GE(stream_.Take().time - first, 2u * 29000000);
}

TEST_F(Streaming, SlowHostLosesWholeFramesAndTheCameraCountsThem)
{
    Throttle(500000);
    stream_.Configure(stream_.SimpleCut());
    Begin();
    ASSERT_TRUE(Eventually([&] { return camera_->DroppedBlocks() >= 5; }));
    Post(3);
    const Frame first = stream_.Take();
    EXPECT_GE(first.block, 5u);
    EXPECT_EQ(first.image, Reference(first.block));
    std::uint64_t last = first.block;
    for (int i = 0; i < 2; ++i) {
        const Frame frame = stream_.Take();
        EXPECT_GT(frame.block, last);
        EXPECT_EQ(frame.image, Reference(frame.block));
        last = frame.block;
    }
    control_.Write(Reg::SiControl, 0);
    // Each block was delivered, or is counted; those after the last one delivered are counted too.
    EXPECT_GE(camera_->DroppedBlocks(), last + 1 - 3);
    EXPECT_EQ(control_.Read(Reg::DroppedBlocks), camera_->DroppedBlocks());
}

TEST_F(Streaming, FrameThatHasBegunIsFinishedHoweverLateTheTransfersCome)
{
    Throttle(500000);
    stream_.Configure({16384, 4, 12288, 0});
    Transfer leader(1024);
    camera_->Submit(Endpoint::StreamIn, leader);
    Begin();
    const std::uint64_t block = LoadLe<std::uint64_t>(leader.Wait().Data().data() + 8);
    // The sensor goes on meanwhile and loses what it sees.
    ASSERT_TRUE(Eventually([&] { return camera_->DroppedBlocks() >= block + 5; }));
    std::vector<std::unique_ptr<Transfer>> rest;
    for (const std::size_t size : {16384u, 16384u, 16384u, 16384u, 12288u, 1024u}) {
        camera_->Submit(Endpoint::StreamIn, *rest.emplace_back(std::make_unique<Transfer>(size)));
    }
    std::vector<std::byte> image;
    for (std::size_t i = 0; i < 5; ++i) {
        const auto data = rest[i]->Wait().Data();
        image.insert(image.end(), data.begin(), data.end());
    }
    EXPECT_EQ(image, Reference(block));
    const auto trailer = rest[5]->Wait().Data();
    ASSERT_EQ(trailer.size(), 32u);
    EXPECT_EQ(LoadLe<std::uint64_t>(trailer.data() + 8), block);
    EXPECT_EQ(LoadLe<std::uint16_t>(trailer.data() + 16), 0);
}

TEST_F(Streaming, UnthrottledCameraWaitsForTransfersAndLosesNothing)
{
    stream_.Configure(stream_.SimpleCut());
    Begin();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    for (std::uint64_t block = 0; block < 50; ++block) {
        stream_.Post();
        EXPECT_EQ(stream_.Take().block, block);
    }
    EXPECT_EQ(camera_->DroppedBlocks(), 0u);
}

TEST_F(Streaming, MultiFrameTakesAsManyAsTheFrameCount)
{
    control_.Write(Block::FrameCount + 0x1C, 3);
    stream_.Configure(stream_.SimpleCut());
    Post(5);
    Begin(9);
    for (std::uint64_t block = 0; block < 3; ++block) {
        EXPECT_EQ(stream_.Take().block, block);
    }
    EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::AcquisitionActive) == 0; }));
    // A second acquisition goes on counting in the same stream.
    stream_.Start(9);
    EXPECT_EQ(stream_.Take().block, 3u);
    EXPECT_EQ(stream_.Take().block, 4u);
}

TEST_F(Streaming, ModeRegisterChoosesWhatStartDoes)
{
    stream_.Configure(stream_.SimpleCut());
    stream_.Enable();
    control_.Write(Reg::AcquisitionMode, 1);
    EXPECT_EQ(control_.TryWrite(Reg::AcquisitionMode, 5), GenCpStatus::InvalidParameter);
    stream_.Post();
    stream_.Post();
    control_.Write(Reg::AcquisitionStart, 1);
    EXPECT_EQ(control_.Read(Reg::AcquisitionStart), 0u); // done
    EXPECT_EQ(stream_.Take().block, 0u);
    EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::AcquisitionActive) == 0; }));
    control_.Write(Reg::AcquisitionMode, 8);
    control_.Write(Reg::AcquisitionStart, 1);
    EXPECT_EQ(stream_.Take().block, 1u);
    EXPECT_EQ(control_.Read(Reg::AcquisitionActive), 1u);
}

TEST_F(Streaming, SettingsReachTheNextFrame)
{
    stream_.Configure(stream_.SimpleCut());
    Begin();
    stream_.Post();
    const auto dim = stream_.Take().image;
    control_.Write(Block::ExposureTime + 0x1C, 20000);
    stream_.Post();
    const Frame bright = stream_.Take();
    EXPECT_EQ(bright.image, Reference(bright.block));
    EXPECT_NE(bright.image, dim);
}

} // namespace
} // namespace Orvi::Vcam::Test
