// Standard features of other models' descriptions act on what the camera does.

#include "ForeignFixture.h"
#include "vcam/Packing.h"

namespace Orvi::Vcam::Test {
namespace {

/// The description of the selectors with its registers elsewhere, so that the stream interface lies where it always
/// does.
CameraConfig SelectorsConfig()
{
    CameraConfig config = ConfigOf("selectors");
    constexpr std::string_view start = "<Address>0x1";
    for (std::size_t at = config.xml.find(start); at != std::string::npos; at = config.xml.find(start, at + 1)) {
        config.xml.insert(at + start.size() - 1, 1, '3');
    }
    return config;
}

TEST(ForeignFeature, ExposureAndGainBrighten)
{
    for (const std::string name : {"converters", "big_endian"}) {
        Foreign camera(name);
        const auto setExposure = [&](int time) {
            name == "converters" ? camera.SetFloat("ExposureTime", time) : camera.SetInt("ExposureTime", time);
        };
        camera.SetInt("Width", 64);
        camera.SetInt("Height", 16);
        setExposure(4000);
        const double dark = camera.Brightness();
        setExposure(8000);
        EXPECT_GT(camera.Brightness(), 1.7 * dark) << name;
        EXPECT_EQ(camera.camera->PeekRegister(Block::ExposureTime + 0x1C), 8000u) << name;
        setExposure(4000);
        name == "converters" ? camera.SetFloat("Gain", 6) : camera.SetInt("Gain", 64);
        EXPECT_GT(camera.Brightness(), 1.5 * dark) << name;
    }
}

TEST(ForeignFeature, AutomaticExposureShows)
{
    Foreign camera("selectors");
    camera.SetFloat("ExposureTime", 1000);
    camera.SetEnum("ExposureAuto", "Continuous");
    camera.camera->PokeRegister(Block::ExposureTime + 0x1C, 15000); // the engine's decision
    EXPECT_EQ(camera.Float("ExposureTime"), 15000);
    camera.SetEnum("ExposureAuto", "Off");
    EXPECT_EQ(camera.Float("ExposureTime"), 15000);
}

TEST(ForeignFeature, SoftwareTriggerTakesOneImage)
{
    Foreign camera("converters");
    camera.SetInt("Width", 64);
    camera.SetInt("Height", 16);
    camera.SetEnum("TriggerSource", "Software");
    camera.SetEnum("TriggerMode", "On");
    camera.SetFloat("TriggerDelay", 0.5); // ms
    EXPECT_EQ(camera.camera->PeekRegister(Block::TriggerDelay + 0x1C), 500u);
    Stream stream(*camera.camera, camera.control);
    stream.Configure(stream.SimpleCut());
    stream.Post();
    stream.Post();
    stream.Enable();
    camera.Execute("AcquisitionStart");
    camera.Execute("TriggerSoftware");
    EXPECT_EQ(stream.Take().block, 0u);
    camera.Execute("TriggerSoftware");
    EXPECT_EQ(stream.Take().block, 1u);
    // What shapes the image is refused while it flows, and the registers keep what they had.
    EXPECT_THROW(camera.SetInt("Width", 128), GenApi::Error);
    EXPECT_EQ(camera.Int("Width"), 64);
    EXPECT_THROW(camera.SetEnum("PixelFormat", "Mono12"), GenApi::Error);
    EXPECT_EQ(camera.Enum("PixelFormat"), "Mono8");
    EXPECT_EQ(camera.camera->DroppedBlocks(), 0u);
    camera.Execute("AcquisitionStop");
}

TEST(ForeignFeature, BinningMakesTheImageFit)
{
    Foreign camera("converters");
    camera.SetInt("BinningHorizontal", 2);
    EXPECT_EQ(camera.Int("WidthMax"), 320);
    EXPECT_EQ(camera.Int("SensorWidth"), 640);
    EXPECT_EQ(camera.Int("Width"), 320);
    EXPECT_EQ(camera.Image().width, 320u);
}

TEST(ForeignFeature, TheTriggerBehindTheSelectorActs)
{
    Foreign camera("selectors");
    const auto mode = [&] { return camera.camera->PeekRegister(Block::TriggerMode + 0x1C); };
    const auto sequence = [&] { return camera.camera->PeekRegister(Block::TriggerSequence + 0x1C); };
    camera.SetEnum("TriggerSelector", "AcquisitionStart");
    camera.SetEnum("TriggerMode", "On");
    EXPECT_EQ(mode(), 0u);
    camera.SetEnum("TriggerSelector", "FrameBurstStart");
    camera.SetEnum("TriggerMode", "On");
    camera.SetInt("AcquisitionBurstFrameCount", 3);
    EXPECT_EQ(mode(), 1u);
    EXPECT_EQ(sequence(), 6u);
    EXPECT_EQ(camera.camera->PeekRegister(Block::TriggerParameter + 0x1C), 3u);
    camera.SetEnum("TriggerMode", "Off");
    camera.SetEnum("TriggerSelector", "FrameStart");
    camera.SetEnum("TriggerSource", "Line0");
    camera.SetEnum("TriggerActivation", "FallingEdge");
    camera.SetEnum("TriggerMode", "On");
    EXPECT_EQ(mode(), 1u);
    EXPECT_EQ(sequence(), 0u);
    EXPECT_EQ(camera.camera->PeekRegister(Block::TriggerSource + 0x1C), 0u);
    EXPECT_EQ(camera.camera->PeekRegister(Reg::TriggerActivation), 0u);
}

TEST(ForeignFeature, BalanceAndEventsBehindSelectorsAct)
{
    Foreign camera("selectors");
    camera.SetEnum("BalanceRatioSelector", "Blue");
    camera.SetFloat("BalanceRatio", 2);
    camera.SetEnum("BalanceRatioSelector", "Red");
    camera.SetFloat("BalanceRatio", 1.5);
    EXPECT_EQ(camera.camera->PeekRegister(Reg::BlueRatio), 2000u);
    EXPECT_EQ(camera.camera->PeekRegister(Block::WhiteBalance + 0x1C), 1500u);
    camera.SetEnum("EventSelector", "ExposureEnd");
    camera.SetEnum("EventNotification", "On");
    camera.camera->PokeRegister(Reg::EventSelector, static_cast<std::uint32_t>(EventKind::ExposureEnd));
    EXPECT_EQ(camera.camera->PeekRegister(Reg::EventNotification), 1u);
    camera.camera->PokeRegister(Reg::EventSelector, static_cast<std::uint32_t>(EventKind::FrameEnd));
    EXPECT_EQ(camera.camera->PeekRegister(Reg::EventNotification), 0u);
}

TEST(ForeignFeature, EventsCarryTheDescriptionsIds)
{
    Foreign camera("selectors");
    camera.SetEnum("EventSelector", "Line0RisingEdge");
    camera.SetEnum("EventNotification", "On");
    const std::uint64_t eirm = camera.control.ReadLong(camera.control.ReadLong(Reg::SbrmAddress) + 0x2C);
    camera.control.Write(eirm, 1);
    Transfer event;
    camera.camera->Submit(Endpoint::EventIn, event);
    camera.camera->PokeRegister(Reg::LineLevels, 1);
    EXPECT_EQ(LoadLe<std::uint16_t>(event.Wait().Data().data() + 14), 0xD001);
}

TEST(ForeignFeature, ColoursAndSharpnessAct)
{
    Foreign camera(SelectorsConfig());
    const auto peek = [&](std::uint32_t block) { return camera.camera->PeekRegister(block + 0x1C); };
    EXPECT_EQ(camera.Float("Saturation"), 1) << "colours as they are";
    EXPECT_EQ(peek(Block::Saturation), 100u);
    camera.SetEnum("PixelFormat", "RGB8Packed");
    camera.SetFloat("Saturation", 0);
    camera.SetFloat("Hue", -30);
    camera.SetInt("Sharpness", 8);
    PictureSettings settings;
    settings.sensorWidth = settings.width = 640;
    settings.sensorHeight = settings.height = 480;
    settings.pixelFormat = 0x02180014;
    settings.saturation = 0;
    settings.hue = -300;
    settings.sharpness = 4; // half of the way
    EXPECT_EQ(peek(Block::Hue), static_cast<std::uint32_t>(-300));
    const Frame frame = camera.Image();
    EXPECT_EQ(frame.image, Reference(settings, frame.block));
    camera.SetInt("Sharpness", -16); // there is no softer than as it is
    EXPECT_EQ(peek(Block::Sharpness), 0u);
}

TEST(ForeignFeature, PackedFormatsArePacked)
{
    // name, code, bits, the format before it is packed
    const std::tuple<const char *, std::uint32_t, unsigned, std::uint32_t> rows[] = {
        {"Mono10p", 0x010A0046, 10, 0x01100003},      {"Mono12p", 0x010C0047, 12, 0x01100005},
        {"Mono12Packed", 0x010C0006, 12, 0x01100005}, {"BayerRG10Packed", 0x010C0027, 12, 0x0110000D},
        {"Mono8", 0x01080001, 8, 0x01080001},
    };
    Foreign camera("converters");
    camera.SetInt("Width", 24);
    camera.SetInt("Height", 18);
    PictureSettings settings;
    settings.sensorWidth = 640;
    settings.sensorHeight = 480;
    settings.width = 24;
    settings.height = 18;
    for (const auto &[name, code, bits, unpacked] : rows) {
        camera.SetEnum("PixelFormat", name);
        settings.pixelFormat = unpacked;
        std::vector<std::byte> wanted = Reference(settings, 0);
        if (bits != 8) {
            const auto format = FindPackedFormat(name, std::nullopt);
            std::vector<std::byte> packed(std::size_t{24} * 18 * bits / 8);
            Pack(*format->unpacked, format->packing, wanted, packed);
            wanted = packed;
        }
        EXPECT_EQ(camera.control.Read(Reg::SiRequiredPayload), wanted.size()) << name;
        const Frame frame = camera.Image();
        EXPECT_EQ(frame.pixelFormat, code) << name;
        EXPECT_EQ(frame.image, wanted) << name;
    }
}

TEST(ForeignFeature, LookUpTableActs)
{
    CameraConfig config = SelectorsConfig();
    config.image.subject = config.image.blockId = config.image.defects = false;
    Foreign camera(config);
    camera.SetInt("LUTIndex", 255);
    EXPECT_EQ(camera.Int("LUTValue"), 65535) << "as if there were none";
    camera.SetEnum("PixelFormat", "Mono8");
    const Frame plain = camera.Image();
    camera.SetBool("LUTEnable", true);
    const Frame same = camera.Image();
    for (std::size_t i = 0; i < plain.image.size(); ++i) {
        ASSERT_NEAR(std::to_integer<int>(same.image[i]), std::to_integer<int>(plain.image[i]), 2) << i;
    }
    for (int i = 0; i < 256; ++i) {
        camera.SetInt("LUTIndex", i);
        camera.SetInt("LUTValue", 65535 - 257 * i);
    }
    const Frame inverse = camera.Image();
    for (std::size_t i = 0; i < plain.image.size(); ++i) {
        ASSERT_NEAR(std::to_integer<int>(inverse.image[i]), 255 - std::to_integer<int>(plain.image[i]), 3) << i;
    }
    // The whole table in one write: as it was.
    std::vector<std::byte> table(2 * 256);
    for (std::size_t i = 0; i < 256; ++i) {
        StoreLe(&table[2 * i], static_cast<std::uint16_t>(257 * i));
    }
    EXPECT_EQ(camera.control.WriteMemory(0x311000, table), GenCpStatus::Success);
    EXPECT_EQ(camera.Image().image, same.image);
    // User sets bring it along.
    camera.SetEnum("UserSetSelector", "UserSet1");
    camera.Execute("UserSetSave");
    camera.SetInt("LUTIndex", 60);
    camera.SetInt("LUTValue", 0);
    EXPECT_NE(camera.Image().image, same.image);
    camera.Execute("UserSetLoad");
    EXPECT_EQ(camera.Image().image, same.image);
}

TEST(ForeignFeature, LinesShowWhatTheirSourcesSay)
{
    Foreign camera(SelectorsConfig());
    const auto status = [&](const std::string &line) {
        camera.SetEnum("LineSelector", line);
        return camera.Bool("LineStatus");
    };
    EXPECT_FALSE(status("Line0"));
    camera.camera->PokeRegister(Reg::LineLevels, 1);
    EXPECT_TRUE(status("Line0")) << "the pin";
    camera.SetBool("LineInverter", true);
    EXPECT_FALSE(status("Line0"));
    EXPECT_EQ(camera.Int("LineStatusAll"), 0);

    camera.SetEnum("LineSelector", "Line1");
    camera.SetEnum("LineSource", "UserOutput0");
    EXPECT_FALSE(status("Line1"));
    camera.SetEnum("UserOutputSelector", "UserOutput0");
    camera.SetBool("UserOutputValue", true);
    EXPECT_TRUE(status("Line1"));
    EXPECT_EQ(camera.Int("LineStatusAll"), 2);
    camera.SetEnum("LineSource", "ExposureActive");
    EXPECT_FALSE(status("Line1"));
    EXPECT_EQ(camera.camera->PeekRegister(Reg::LineSourceTable + 4), LineSourceValue::ExposureActive);
    EXPECT_FALSE(status("Line3")) << "a line that the camera does not have";
}

TEST(ForeignFeature, TimersRun)
{
    Foreign camera(SelectorsConfig());
    camera.SetEnum("TimerSelector", "Timer1");
    camera.SetInt("TimerDelay", 70);
    camera.SetEnum("TimerSelector", "Timer0");
    camera.SetFloat("TimerDuration", 5000); // ms
    camera.SetEnum("TimerTriggerSource", "ExposureStart");
    const auto timer = [&](std::uint32_t number, std::uint32_t word) {
        return camera.camera->PeekRegister(Reg::TimerTable + 16 * number + 4 * word);
    };
    EXPECT_EQ(timer(0, 0), 0u);
    EXPECT_EQ(timer(0, 1), 5000000u);
    EXPECT_EQ(timer(0, 2), TimerSource::ExposureStart);
    EXPECT_EQ(timer(1, 0), 70u);
    camera.SetEnum("LineSelector", "Line1");
    camera.SetEnum("LineSource", "Timer0Active");
    EXPECT_FALSE(camera.Bool("LineStatus"));
    camera.Image();
    EXPECT_TRUE(camera.Bool("LineStatus"));
    camera.SetEnum("TimerTriggerSource", "Encoder0");
    EXPECT_EQ(timer(0, 2), 0u) << "never comes";
}

} // namespace
} // namespace Orvi::Vcam::Test
