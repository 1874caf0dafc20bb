#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class ImageBuffer : public Feature {
  protected:
    void SetUp() override
    {
        Feature::SetUp();
        control_.Write(Value(Block::ImageBufferMode), 1);
    }
    std::uint32_t Held() { return control_.Read(Value(Block::ImageBufferCount)); }
    void Capture(std::uint32_t count)
    {
        control_.Write(Value(Block::FrameCount), count);
        Begin(AcquisitionCommand::MultiFrame);
        EXPECT_TRUE(Eventually([&] { return Held() == count; }));
    }
    GenCpStatus ReadOut()
    {
        return control_.TryWrite(Value(Block::AcquisitionCommand), AcquisitionCommand::ImageBufferRead);
    }
};

TEST_F(ImageBuffer, ImagesStayInTheCameraUntilTheyAreReadOut)
{
    Capture(3);
    ExpectNoImage();
    for (std::uint32_t block = 0; block < 3; ++block) {
        EXPECT_EQ(Held(), 3 - block);
        stream_.Post();
        EXPECT_EQ(ReadOut(), Success);
        const Frame frame = stream_.Take();
        EXPECT_EQ(frame.block, block);
        ExpectImage(frame, settings_);
    }
    EXPECT_EQ(Held(), 0u);
    EXPECT_EQ(ReadOut(), Success) << "nothing left, nothing sent";
    ExpectNoImage();
}

TEST_F(ImageBuffer, HeldImageKeepsTheSettingsOfItsExposure)
{
    Capture(1);
    control_.Write(Value(Block::ExposureTime), 20000);
    stream_.Post();
    EXPECT_EQ(ReadOut(), Success);
    ExpectImage(stream_.Take(), settings_);
}

TEST_F(ImageBuffer, ReadOutWaitsForATransfer)
{
    Capture(2);
    EXPECT_EQ(ReadOut(), Success);
    EXPECT_EQ(ReadOut(), Success);
    stream_.Post();
    stream_.Post();
    EXPECT_EQ(stream_.Take().block, 0u);
    EXPECT_EQ(stream_.Take().block, 1u);
    EXPECT_EQ(control_.Read(Reg::DroppedBlocks), 0u);
}

TEST_F(ImageBuffer, FullBufferLosesFurtherImages)
{
    control_.Write(Reg::Unthrottled, 0);
    control_.Write(Value(Block::FrameRate), 1000000);
    control_.Write(Value(Block::ExposureTime), 20);
    Begin();
    EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::DroppedBlocks) != 0; }));
    EXPECT_EQ(Held(), 32u);
    stream_.Post();
    EXPECT_EQ(ReadOut(), Success);
    EXPECT_EQ(stream_.Take().block, 0u) << "the oldest is kept";
}

TEST_F(ImageBuffer, UnthrottledCameraWaitsForRoom)
{
    Begin();
    EXPECT_TRUE(Eventually([&] { return Held() == 32; }));
    stream_.Post();
    EXPECT_EQ(ReadOut(), Success);
    stream_.Take();
    EXPECT_TRUE(Eventually([&] { return Held() == 32; }));
    EXPECT_EQ(control_.Read(Reg::DroppedBlocks), 0u);
}

TEST_F(ImageBuffer, NewAcquisitionEmptiesTheBuffer)
{
    Capture(2);
    EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::AcquisitionActive) == 0; }));
    control_.Write(Value(Block::TriggerMode), 1);
    stream_.Start();
    EXPECT_EQ(Held(), 0u);
}

TEST_F(ImageBuffer, ReadOutIsRefusedWithoutBufferOrStream)
{
    EXPECT_EQ(ReadOut(), AccessDenied) << "no stream";
    control_.Write(Value(Block::ImageBufferMode), 0);
    Begin();
    EXPECT_EQ(ReadOut(), AccessDenied) << "no buffer";
}

TEST_F(ImageBuffer, UnplugEndsAReadOutThatWaits)
{
    Capture(1);
    EXPECT_EQ(ReadOut(), Success);
    camera_->Unplug();
    camera_->Plug();
    EXPECT_EQ(Held(), 0u);
}

} // namespace
} // namespace Orvi::Vcam::Test
