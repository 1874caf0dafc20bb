// Automatic modes: they come to rest after some images.

#include "tests/effects/EffectTest.h"

#include <cmath>

namespace Orvi::Testing {
namespace {

class AutomaticEffectTest : public EffectTest {
  protected:
    /// Images until the condition holds.
    bool Converges(const std::function<bool()> &condition)
    {
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        bool isReached = condition();
        for (int image = 0; image < 50 && !isReached; ++image) {
            channel.Enqueue(channel.Next().hRequest);
            isReached = condition();
        }
        channel.Stop();
        return isReached;
    }
    double Exposure() const
    {
        double value = 0;
        EXPECT_EQ(GetCamExposureTime(hCam, &value), 0u);
        return value;
    }
    double Gain() const
    {
        double value = 0;
        EXPECT_EQ(GetCamGain(hCam, &value), 0u);
        return value;
    }
};

TEST_F(AutomaticEffectTest, ExposureComesCloserToItsAimWithEveryImage)
{
    uint32_t exposure = 4000;
    ASSERT_EQ(SetCamExposureTime(hCam, exposure), 0u);
    ASSERT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_AUTO), 0u);
    {
        RequestChannel channel(hCam, 5);
        channel.EnqueueAll();
        channel.Start();
        for (int image = 0; image < 5; ++image) {
            settings_.exposure = exposure;
            ExpectPicture(Copy(channel.Next()));
            exposure += (20000 - exposure) / 2;
        }
        channel.Stop();
    }
    EXPECT_TRUE(Converges([&] { return Exposure() == 20000; }));
    ASSERT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_MANUAL), 0u);
    settings_.exposure = 20000;
    ExpectPicture();
    ExpectPicture();
    EXPECT_EQ(Exposure(), 20000) << "a manual one stays";
}

TEST_F(AutomaticEffectTest, GainMakesUpForTheExposure)
{
    ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure = 5000), 0u);
    ASSERT_EQ(SetCamGainAuto(hCam, CAM_GAIN_AUTO_CONTINUOUS), 0u);
    EXPECT_TRUE(Converges([&] { return std::abs(Gain() - 12.04) < 0.02; })) << "four times the signal";
    ASSERT_EQ(SetCamGainAuto(hCam, CAM_GAIN_AUTO_OFF), 0u);
    settings_.gain = static_cast<uint32_t>(std::lround(Gain() * 100));
    ExpectPicture();
}

TEST_F(AutomaticEffectTest, WhiteBalanceIsDoneOnce)
{
    ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_RGB8), 0u);
    settings_.pixelFormat = CAM_PIXEL_FORMAT_RGB8;
    ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, 2), 0u);
    ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, 0.5), 0u);
    settings_.redRatio = 2000;
    settings_.blueRatio = 500;
    ExpectPicture();
    ASSERT_EQ(SetCamBalanceWhiteAuto(hCam, CAM_BALANCE_WHITE_AUTO_ONCE), 0u);
    CAM_BALANCE_WHITE_AUTO_TYPE mode{};
    ASSERT_EQ(GetCamBalanceWhiteAuto(hCam, &mode), 0u);
    EXPECT_EQ(mode, CAM_BALANCE_WHITE_AUTO_ONCE);
    EXPECT_TRUE(Converges([&] {
        return GetCamBalanceWhiteAuto(hCam, &mode) == CAM_API_STS_SUCCESS && mode == CAM_BALANCE_WHITE_AUTO_OFF;
    })) << "the mode goes back by itself";
    settings_.redRatio = settings_.blueRatio = 1000;
    ExpectPicture();
}

TEST_F(AutomaticEffectTest, ModesThatTheCameraLacksAreRefused)
{
    EXPECT_EQ(SetCamExposureTimeControl(hCam, CAM_EXPOSURE_TIME_CONTROL_NO_SPECIFY), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(SetCamGainAuto(hCam, CAM_GAIN_AUTO_TYPE(3)), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(SetCamBalanceWhiteAuto(hCam, CAM_BALANCE_WHITE_AUTO_TYPE(2)), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(EnumNode("ExposureAuto"), "Off");
    EXPECT_EQ(EnumNode("GainAuto"), "Off");
}

} // namespace
} // namespace Orvi::Testing
