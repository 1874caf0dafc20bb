// What a feature function sets shows in the image, and at the node of the same name.

#include "tests/e2e/RequestChannel.h"

#include <algorithm>
#include <numeric>

namespace Orvi::Testing {

class FeatureEffectTest : public VirtualCameraTest {
  protected:
    FeatureEffectTest() : hCam(Open())
    {
        EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_OFF), 0u);
        EXPECT_EQ(SetCamExposureTime(hCam, 4000), 0u);
        EXPECT_EQ(SetCamGain(hCam, 0), 0u);
    }

    /// An image with the present settings, without its first line, which carries the block id.
    std::vector<unsigned char> Image(CAM_STREAM_REQUEST_INFO *info = nullptr)
    {
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        const Delivered done = channel.Next();
        channel.Stop();
        EXPECT_EQ(done.info.uiStatus, 0u);
        if (info != nullptr) {
            *info = done.info;
        }
        const auto *bytes = reinterpret_cast<const unsigned char *>(done.image);
        const std::size_t line = done.size / done.info.uiHeight;
        return {bytes + line, bytes + done.size};
    }

    double Brightness()
    {
        const std::vector<unsigned char> image = Image();
        return std::accumulate(image.begin(), image.end(), 0.0) / static_cast<double>(image.size());
    }

    double FloatNode(const char *name)
    {
        double value = 0;
        EXPECT_EQ(Nd_GetFloatValue(hCam, Node(hCam, name), &value, false, false), 0u) << name;
        return value;
    }

    CAM_HANDLE hCam;
};

TEST_F(FeatureEffectTest, LongerExposureIsBrighter)
{
    EXPECT_NEAR(FloatNode("ExposureTime"), 4000, 1);
    const double dark = Brightness();
    ASSERT_EQ(SetCamExposureTime(hCam, 12000), 0u);
    double exposure = 0;
    ASSERT_EQ(GetCamExposureTime(hCam, &exposure), 0u);
    EXPECT_NEAR(exposure, 12000, 1);
    EXPECT_GT(Brightness(), 1.5 * dark);
}

TEST_F(FeatureEffectTest, GainIsBrighter)
{
    double least = 0, most = 0;
    ASSERT_EQ(GetCamGainMinMax(hCam, &least, &most), 0u);
    ASSERT_LT(least, most);
    ASSERT_EQ(SetCamGain(hCam, least), 0u);
    const double dark = Brightness();
    ASSERT_EQ(SetCamGain(hCam, least + 6), 0u);
    EXPECT_NEAR(FloatNode("Gain"), least + 6, 0.01);
    EXPECT_GT(Brightness(), 1.5 * dark);
    EXPECT_EQ(SetCamGain(hCam, most + 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_NEAR(FloatNode("Gain"), least + 6, 0.01) << "a refused value changes nothing";
    ASSERT_EQ(SetCamGain(hCam, least), 0u);
}

TEST_F(FeatureEffectTest, BlackLevelLiftsTheImage)
{
    double least = 0, most = 0;
    ASSERT_EQ(GetCamBlackLevelMinMax(hCam, &least, &most), 0u);
    ASSERT_EQ(SetCamBlackLevel(hCam, least), 0u);
    const double before = Brightness();
    ASSERT_EQ(SetCamBlackLevel(hCam, most), 0u);
    EXPECT_GT(Brightness(), before);
    ASSERT_EQ(SetCamBlackLevel(hCam, least), 0u);
}

TEST_F(FeatureEffectTest, GeometryGivesTheImageItsSize)
{
    ASSERT_EQ(SetCamWidth(hCam, 128), 0u);
    ASSERT_EQ(SetCamHeight(hCam, 64), 0u);
    ASSERT_EQ(SetCamOffsetX(hCam, 16), 0u);
    uint32_t payload = 0;
    ASSERT_EQ(GetCamStreamPayloadSize(hCam, &payload), 0u);
    EXPECT_EQ(payload, 128u * 64u);
    CAM_STREAM_REQUEST_INFO info{};
    Image(&info);
    EXPECT_EQ(info.uiWidth, 128u);
    EXPECT_EQ(info.uiHeight, 64u);
    EXPECT_EQ(info.uiOffsetX, 16u);
    EXPECT_EQ(GetInt(hCam, "Width"), 128);
    ASSERT_EQ(SetCamOffsetX(hCam, 0), 0u);
}

TEST_F(FeatureEffectTest, GeometryIsRefusedWhileStreaming)
{
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    uint32_t width = 0;
    EXPECT_EQ(GetCamWidth(hCam, &width), 0u);
    EXPECT_EQ(SetCamWidth(hCam, width), CAM_API_STS_NOT_WRITABLE);
    bool enabled = false;
    EXPECT_EQ(GetCamStreamEnable(hCam, &enabled), 0u);
    EXPECT_TRUE(enabled);
    channel.Stop();
    EXPECT_EQ(SetCamWidth(hCam, width), 0u);
}

TEST_F(FeatureEffectTest, MirroringTurnsALine)
{
    ASSERT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_HORIZONTAL_RAMP), 0u);
    ASSERT_EQ(SetCamReverseX(hCam, false), 0u);
    CAM_STREAM_REQUEST_INFO info{};
    const auto lastLine = [&] {
        const std::vector<unsigned char> image = Image(&info);
        return std::vector<unsigned char>(image.end() - info.uiWidth, image.end());
    };
    std::vector<unsigned char> plain = lastLine();
    ASSERT_EQ(SetCamReverseX(hCam, true), 0u);
    std::vector<unsigned char> mirrored = lastLine();
    ASSERT_EQ(SetCamReverseX(hCam, false), 0u);
    EXPECT_NE(plain, mirrored);
    ASSERT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_OFF), 0u);
}

TEST_F(FeatureEffectTest, SoftwareTriggerBringsOneImage)
{
    ASSERT_EQ(SetCamTriggerMode(hCam, true), 0u);
    ASSERT_EQ(SetCamTriggerSource(hCam, CAM_TRIGGER_SOURCE_SOFTWARE), 0u);
    {
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
        EXPECT_EQ(channel.Next().info.uiStatus, 0u);
        EXPECT_FALSE(channel.TryNext()) << "one trigger, one image";
        ASSERT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u);
        EXPECT_EQ(channel.Next().info.uiStatus, 0u);
        channel.Stop();
    }
    ASSERT_EQ(SetCamTriggerMode(hCam, false), 0u);
}

} // namespace Orvi::Testing
