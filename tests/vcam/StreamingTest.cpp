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
