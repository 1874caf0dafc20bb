#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

TEST_F(Feature, BinningSumsAndMakesTheSensorSmaller)
{
    control_.Write(Value(Block::BinningX), 2);
    control_.Write(Value(Block::BinningY), 3);
    EXPECT_EQ(control_.Read(ImageSizeWord::SensorWidth), 160u);
    EXPECT_EQ(control_.Read(ImageSizeWord::SensorHeight), 80u);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 160u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 160u * 80);
    settings_.binningX = 2;
    settings_.binningY = 3;
    settings_.width = 160;
    settings_.height = 80;
    ExpectReference();
}

TEST_F(Feature, DecimationSkips)
{
    control_.Write(Value(Block::DecimationX), 2);
    control_.Write(Value(Block::DecimationY), 2);
    settings_.decimationX = settings_.decimationY = 2;
    settings_.width = 160;
    settings_.height = 120;
    ExpectReference();
}

TEST_F(Feature, BinnedImageMovesBackIntoTheSensor)
{
    control_.Write(ImageSizeWord::Width, 100);
    control_.Write(ImageSizeWord::OffsetX, 200);
    control_.Write(Value(Block::BinningX), 2);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 100u);
    EXPECT_EQ(control_.Read(ImageSizeWord::OffsetX), 0u);
}

TEST_F(Feature, GeometryOfTheSensorIsLockedWhileStreaming)
{
    Begin();
    EXPECT_EQ(control_.TryWrite(Value(Block::BinningX), 2), AccessDenied);
    EXPECT_EQ(control_.TryWrite(Value(Block::DecimationY), 2), AccessDenied);
    EXPECT_EQ(control_.TryWrite(Block::ReverseX + 0x10, 1), Success);
}

TEST_F(Feature, ReverseMirrorsTheScene)
{
    control_.Write(Block::ReverseX + 0x10, 1);
    control_.Write(Block::ReverseY + 0x10, 1);
    settings_.reverseX = settings_.reverseY = true;
    ExpectReference();
    const Scene plain(PictureSettings{.sensorWidth = 320, .sensorHeight = 240, .width = 320, .height = 240});
    EXPECT_EQ(Scene(settings_).Background(10, 20).green, plain.Background(309, 219).green);
}

TEST_F(Feature, ToneAndColourReachThePicture)
{
    control_.Write(Reg::PixelFormat, settings_.pixelFormat = 0x02180014);
    control_.Write(Value(Block::Gamma), settings_.gamma = 45);
    ExpectReference();
    control_.Write(Value(Block::Sharpness), settings_.sharpness = 4);
    ExpectReference();
    control_.Write(Value(Block::Hue), static_cast<std::uint32_t>(settings_.hue = -600));
    ExpectReference();
    control_.Write(Value(Block::Saturation), settings_.saturation = 200);
    ExpectReference();
    control_.Write(Value(Block::WhiteBalance), settings_.redRatio = 1500);
    control_.Write(Reg::BlueRatio, settings_.blueRatio = 700);
    ExpectReference();
}

TEST_F(Feature, SaturationZeroIsGreyAndHueTurnsRedToGreen)
{
    settings_.pixelFormat = 0x02180014;
    settings_.saturation = 0;
    const Signal grey = Scene(settings_).Background(300, 10);
    EXPECT_NEAR(grey.red, grey.green, 2);
    EXPECT_NEAR(grey.red, grey.blue, 2);
    settings_.saturation = 100;
    const Signal before = Scene(settings_).Background(300, 10);
    settings_.hue = 1200;
    const Signal after = Scene(settings_).Background(300, 10);
    EXPECT_GT(before.red, before.green);
    EXPECT_NEAR(after.green, before.red, 3);
    EXPECT_NEAR(after.blue, before.green, 3);
}

TEST_F(Feature, GammaBelowOneBrightensAndKeepsWhite)
{
    const Signal plain = Scene(settings_).Background(100, 100);
    settings_.gamma = 45;
    EXPECT_GT(Scene(settings_).Background(100, 100).green, plain.green);
    settings_.exposure = 16000000;
    EXPECT_EQ(Scene(settings_).Background(100, 100).green, s_white);
}

TEST_F(Feature, BalanceRatioIsThatOfTheSelectedColour)
{
    control_.Write(Reg::BalanceRatioSelector, 1);
    control_.Write(Reg::BalanceRatio, 2000);
    control_.Write(Reg::BalanceRatioSelector, 0);
    EXPECT_EQ(control_.Read(Reg::BalanceRatio), 1000u);
    control_.Write(Reg::BalanceRatio, 500);
    EXPECT_EQ(control_.Read(Value(Block::WhiteBalance)), 500u);
    EXPECT_EQ(control_.Read(Reg::BlueRatio), 2000u);
}

TEST_F(Feature, WhiteBalanceOnceConvergesAndSwitchesItselfOff)
{
    control_.Write(Value(Block::WhiteBalance), 3000);
    control_.Write(Reg::BlueRatio, 300);
    control_.Write(Block::WhiteBalance + 8, 3);
    Begin();
    for (int i = 0; i < 30 && control_.Read(Block::WhiteBalance + 8) == 3; ++i) {
        stream_.Post();
        stream_.Take();
    }
    EXPECT_EQ(control_.Read(Block::WhiteBalance + 8), 1u);
    EXPECT_EQ(control_.Read(Value(Block::WhiteBalance)), 1000u);
    EXPECT_EQ(control_.Read(Reg::BlueRatio), 1000u);
}

TEST_F(Feature, AutomaticExposureAndGainConvergeOverFrames)
{
    control_.Write(Block::ExposureTime + 8, 2);
    Begin();
    for (int i = 0; i < 40; ++i) {
        stream_.Post();
        stream_.Take();
    }
    EXPECT_EQ(control_.Read(Value(Block::ExposureTime)), 20000u);
    control_.Write(Block::ExposureTime + 8, 1);
    control_.Write(Value(Block::ExposureTime), 10000);
    control_.Write(Block::Gain + 8, 2);
    for (int i = 0; i < 40; ++i) {
        stream_.Post();
        stream_.Take();
    }
    EXPECT_NEAR(control_.Read(Value(Block::Gain)), 602, 2);
}

} // namespace
} // namespace Orvi::Vcam::Test
