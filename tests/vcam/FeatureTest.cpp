#include "HostSide.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class Feature : public testing::Test {
  protected:
    static constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }
    void SetUp() override
    {
        control_.Write(Reg::Unthrottled, 1);
        settings_.sensorWidth = settings_.width = 320;
        settings_.sensorHeight = settings_.height = 240;
    }
    /// Takes one image and compares it with the reference for settings_.
    void ExpectReference()
    {
        const Frame frame = Stream::One(*camera_, control_);
        std::vector<std::byte> image(settings_.ImageBytes());
        RenderReference(settings_, 0, image);
        EXPECT_EQ(frame.image, image);
    }
    void Begin(std::uint32_t command = 8)
    {
        stream_.Configure(stream_.SimpleCut());
        stream_.Enable();
        stream_.Start(command);
    }
    void Trigger() { control_.Write(Value(Block::SoftwareTrigger), 8); }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
    Stream stream_{*camera_, control_};
    PictureSettings settings_;
};

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

TEST_F(Feature, SoftwareTriggerTakesOneImageEach)
{
    control_.Write(Value(Block::TriggerMode), 1);
    Begin();
    stream_.Post();
    stream_.Post();
    Trigger();
    EXPECT_EQ(stream_.Take().block, 0u);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(control_.Read(Value(Block::SoftwareTrigger)), 0u);
    Trigger();
    EXPECT_EQ(stream_.Take().block, 1u);
    Transfer none(1024);
    camera_->Submit(Endpoint::StreamIn, none);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(none.IsDone()) << "an image without a trigger";
    EXPECT_TRUE(camera_->Cancel(Endpoint::StreamIn, none));
}

TEST_F(Feature, TriggerSequence6TakesABurst)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSequence), 6);
    control_.Write(Value(Block::TriggerParameter), 3);
    Begin();
    for (int i = 0; i < 3; ++i) {
        stream_.Post();
    }
    Trigger();
    for (std::uint64_t block = 0; block < 3; ++block) {
        EXPECT_EQ(stream_.Take().block, block);
    }
    Transfer none(1024);
    camera_->Submit(Endpoint::StreamIn, none);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(none.IsDone());
    EXPECT_TRUE(camera_->Cancel(Endpoint::StreamIn, none));
}

TEST_F(Feature, TriggerDelayPutsTheImageOff)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerDelay), 50000);
    Begin();
    stream_.Post();
    control_.Write(Reg::TimestampLatch, 1);
    Trigger();
    EXPECT_GE(stream_.Take().time, control_.ReadLong(Reg::Timestamp) + 50000000);
}

TEST_F(Feature, EdgeOfLine0TriggersAsActivated)
{
    control_.Write(Value(Block::TriggerMode), 1);
    control_.Write(Value(Block::TriggerSource), 0);
    control_.Write(Reg::TriggerActivation, 0);
    Begin();
    stream_.Post();
    Trigger(); // not the source
    control_.Write(Reg::LineLevels, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(control_.Read(Reg::DroppedBlocks), 0u);
    control_.Write(Reg::LineLevels, 0);
    EXPECT_EQ(stream_.Take().block, 0u);
}

TEST_F(Feature, LinesShowTheirSourcesAndInverter)
{
    const auto status = [&] { return control_.Read(Block::LineStatus + 0x10); };
    control_.Write(Reg::LineLevels, 1);
    EXPECT_EQ(status(), 1u);
    control_.Write(Value(Block::LineSelector), 2);
    control_.Write(Value(Block::LineSource), LineSourceValue::UserOutput);
    control_.Write(Block::UserOutput + 0x10, 4);
    EXPECT_EQ(status(), 5u);
    control_.Write(Block::LineInverter + 0x10, 7);
    EXPECT_EQ(status(), 2u);
    control_.Write(Value(Block::LineSelector), 1);
    EXPECT_EQ(control_.Read(Value(Block::LineSource)), LineSourceValue::Off);
    control_.Write(Block::LineInverter + 0x10, 0);
    control_.Write(Value(Block::LineSource), LineSourceValue::AcquisitionActive);
    stream_.Start();
    EXPECT_EQ(status() & 2, 2u);
    control_.Write(Reg::AcquisitionAbort, 1);
    EXPECT_EQ(status() & 2, 0u);
    EXPECT_EQ(control_.TryWrite(Block::UserOutput + 0x10, 1), InvalidParameter);
    control_.Write(Value(Block::LineSelector), 0);
    EXPECT_EQ(control_.TryWrite(Value(Block::LineSource), LineSourceValue::UserOutput), AccessDenied);
}

TEST_F(Feature, UserSetsKeepSettingsForTheLifeOfTheCamera)
{
    control_.Write(Value(Block::Gain), 900);
    control_.Write(ImageSizeWord::Width, 160);
    control_.Write(Reg::PixelFormat, 0x02180014);
    control_.Write(Reg::UserSetSelector, 3);
    control_.Write(Reg::UserSetSave, 1);
    control_.Write(Reg::UserSetSelector, 0);
    control_.Write(Reg::UserSetLoad, 1);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 0u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 320u * 240);
    EXPECT_EQ(control_.TryWrite(Reg::UserSetSave, 1), AccessDenied) << "the factory's set";
    control_.Write(Reg::UserSetDefault, 3);
    camera_->Unplug();
    camera_->Plug();
    EXPECT_EQ(control_.Read(Reg::UserSetDefault), 3u);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 900u);
    EXPECT_EQ(control_.Read(Value(Block::PixelSize)), 24u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 160u * 240 * 3);
}

TEST_F(Feature, UserSetIsNotLoadedWhileStreaming)
{
    Begin();
    EXPECT_EQ(control_.TryWrite(Reg::UserSetLoad, 1), AccessDenied);
}

} // namespace
} // namespace Orvi::Vcam::Test
