// When images come, and what becomes of them while the host keeps them waiting.

#include "StreamingFixture.h"

namespace Orvi::Vcam::Test {
namespace {

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

} // namespace
} // namespace Orvi::Vcam::Test
