// When images are taken: frame rate, frame count, image buffer, sequential shutter, synchronization.

#include "tests/effects/EffectTest.h"

#include <chrono>

namespace Orvi::Testing {
namespace {

class AcquisitionEffectTest : public EffectTest {
  protected:
    uint32_t Held() const
    {
        uint32_t count = 0;
        EXPECT_EQ(GetCamImageBufferFrameCount(hCam, &count), 0u);
        return count;
    }
    /// The least time between the images of an acquisition that keeps to its frame rate, over three images.
    uint64_t TimeOfThreeImages()
    {
        RequestChannel channel(hCam, 3);
        channel.EnqueueAll();
        channel.Start();
        const uint64_t first = channel.Next().info.ullDeviceTimestamp;
        channel.Next();
        const uint64_t last = channel.Next().info.ullDeviceTimestamp;
        channel.Stop();
        return last - first;
    }
};

TEST_F(AcquisitionEffectTest, FrameRateIsTheDistanceOfImages)
{
    WriteWord(hCam, Virtual::unthrottled, 0);
    ASSERT_EQ(SetCamExposureTime(hCam, 20), 0u);
    ASSERT_EQ(SetCamAcquisitionFrameRate(hCam, 12.5), 0u);
    double rate = 0;
    EXPECT_EQ(GetCamAcquisitionFrameRate(hCam, &rate), 0u);
    EXPECT_DOUBLE_EQ(rate, 12.5);
    EXPECT_GE(TimeOfThreeImages(), 80'000'000u) << "160 ms, less what the first one may have been late";
    double min = 0, max = 0;
    ASSERT_EQ(GetCamAcquisitionFrameRateMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(SetCamAcquisitionFrameRate(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamAcquisitionFrameRate(hCam, min / 2), CAM_API_STS_INVALID_PARAMETER);
    // Without control the camera takes the rate that it likes best, which is above this one.
    ASSERT_EQ(SetCamAcquisitionFrameRate(hCam, min), 0u);
    ASSERT_EQ(SetCamAcquisitionFrameRateControl(hCam, CAM_ACQ_FRAME_RATE_CONTROL_NO_SPECIFY), 0u);
    EXPECT_LT(TimeOfThreeImages(), 15'000'000'000u) << "at the least rate it were 20 s";
    EXPECT_EQ(SetCamAcquisitionFrameRateControl(hCam, CAM_ACQ_FRAME_RATE_CONTROL_TYPE(2)), CAM_API_STS_NOT_AVAILABLE);
}

TEST_F(AcquisitionEffectTest, ExposureSlowsTheFrameRateDown)
{
    WriteWord(hCam, Virtual::unthrottled, 0);
    ASSERT_EQ(SetCamAcquisitionFrameRate(hCam, 1000), 0u);
    ASSERT_EQ(SetCamExposureTime(hCam, 30000), 0u);
    EXPECT_GE(TimeOfThreeImages(), 30'000'000u);
}

TEST_F(AcquisitionEffectTest, SynchronizedImagesComeWithTheBeat)
{
    WriteWord(hCam, Virtual::unthrottled, 0);
    ASSERT_EQ(SetCamExposureTime(hCam, 20), 0u);
    ASSERT_EQ(SetCamAcquisitionFrameRate(hCam, 20), 0u);
    ASSERT_EQ(SetCamFrameSynchronization(hCam, CAM_FRAME_SYNCHRONIZATION_BUS), 0u);
    EXPECT_GE(TimeOfThreeImages(), 50'000'000u) << "not two images for one beat";
    // All cameras of this computer keep time with its clock.
    constexpr uint64_t period = 50'000'000;
    const auto hostTime = [] {
        return static_cast<uint64_t>(
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
    };
    for (int round = 0; round < 5; ++round) {
        RequestChannel channel(hCam, 1);
        channel.EnqueueAll();
        const uint64_t started = hostTime();
        channel.Start();
        const uint64_t image = channel.Next().info.ullDeviceTimestamp;
        channel.Stop();
        const uint64_t deviceTime = DeviceTime();
        EXPECT_GE(image + hostTime() - deviceTime, (started / period + 1) * period) << "before the next beat";
    }
    EXPECT_EQ(SetCamFrameSynchronization(hCam, CAM_FRAME_SYNCHRONIZATION_TYPE(2)), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(AcquisitionEffectTest, FrameCountEndsAMultiFrameAcquisition)
{
    ASSERT_EQ(SetCamAcquisitionFrameCount(hCam, 3), 0u);
    RequestChannel channel(hCam, 5);
    channel.EnqueueAll();
    channel.Start(CAM_ACQ_MODE_MULTI_FRAME);
    for (uint64_t block = 0; block < 3; ++block) {
        const Picture picture = Copy(channel.Next());
        EXPECT_EQ(picture.info.ullBlockId, block);
        ExpectPicture(picture);
    }
    EXPECT_TRUE(Eventually([&] { return !BoolNode("AcquisitionActive"); }));
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
    EXPECT_EQ(SetCamAcquisitionFrameCount(hCam, 0), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(AcquisitionEffectTest, ImageBufferKeepsImagesUntilTheyAreReadOut)
{
    ASSERT_EQ(SetCamImageBufferMode(hCam, CAM_IMAGE_BUFFER_MODE_ON), 0u);
    RequestChannel channel(hCam, 4);
    channel.EnqueueAll();
    EXPECT_EQ(ExecuteCamImageBufferRead(hCam), CAM_API_STS_ACCESS_DENIED) << "there is no stream";
    channel.Start();
    EXPECT_TRUE(Eventually([&] { return Held() == 32; })) << Held();
    EXPECT_FALSE(channel.TryNext()) << "nothing comes by itself";
    for (uint64_t block = 0; block < 3; ++block) {
        ASSERT_EQ(ExecuteCamImageBufferRead(hCam), 0u);
        const Picture picture = Copy(channel.Next());
        EXPECT_EQ(picture.info.ullBlockId, block) << "the oldest one comes first";
        ExpectPicture(picture);
    }
    EXPECT_EQ(SetCamImageBufferMode(hCam, CAM_IMAGE_BUFFER_MODE_OFF), CAM_API_STS_NOT_WRITABLE);
    channel.Stop();
    ASSERT_EQ(SetCamImageBufferMode(hCam, CAM_IMAGE_BUFFER_MODE_OFF), 0u);
    EXPECT_EQ(Held(), 0u) << "a change of the mode empties the buffer";
}

TEST_F(AcquisitionEffectTest, ReadOutIsRefusedWithoutTheMode)
{
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(ExecuteCamImageBufferRead(hCam), CAM_API_STS_ACCESS_DENIED);
    channel.Stop();
}

TEST_F(AcquisitionEffectTest, SequentialShutterExposesImageByImage)
{
    constexpr uint32_t sequence[] = {5000, 10000, 20000};
    for (uint32_t i = 0; i < 3; ++i)
        ASSERT_EQ(SetCamSequentialShutterEntry(hCam, i + 1, sequence[i]), 0u);
    ASSERT_EQ(SetCamSequentialShutterTerminateAt(hCam, 3), 0u);
    ASSERT_EQ(SetCamSequentialShutterEnable(hCam, true), 0u);
    for (int acquisition = 0; acquisition < 2; ++acquisition) { // each one begins anew
        RequestChannel channel(hCam, 4);
        channel.EnqueueAll();
        channel.Start();
        for (uint32_t image = 0; image < 4; ++image) {
            settings_.exposure = sequence[image % 3];
            ExpectPicture(Copy(channel.Next()));
        }
        channel.Stop();
    }
    uint32_t entry = 0, min = 0, max = 0;
    EXPECT_EQ(GetCamSequentialShutterEntry(hCam, 2, &entry), 0u);
    EXPECT_EQ(entry, 10000u);
    EXPECT_EQ(GetCamSequentialShutterIndexMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(std::pair(min, max), std::pair(1u, 16u));
    EXPECT_EQ(GetCamSequentialShutterEntry(hCam, max + 1, &entry), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamSequentialShutterEntry(hCam, 0, 20), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamSequentialShutterTerminateAt(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(GetCamSequentialShutterEntryMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(std::pair(min, max), std::pair(20u, 16'000'000u)) << "those of an exposure time";
    EXPECT_EQ(SetCamSequentialShutterEntry(hCam, 1, max + 1), CAM_API_STS_INVALID_PARAMETER);
    ASSERT_EQ(SetCamSequentialShutterEnable(hCam, false), 0u);
    settings_.exposure = 10000;
    ExpectPicture();
}

} // namespace
} // namespace Orvi::Testing
