// What the keys of a description file do to the camera, seen from its USB side.

#include "../HostSide.h"
#include "ConfigFiles.h"
#include "vcam/Description.h"
#include "vcam/config/ConfigFile.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

/// The only camera of a file with these keys.
std::shared_ptr<VirtualCamera> CameraOf(const std::string &keys)
{
    const ConfigFile file =
        ReadConfig("[[camera]]\nsensor_width = 128\nsensor_height = 32\n" + keys, "", Disk::Untouched);
    EXPECT_TRUE(file.mistakes.empty()) << MistakeText("file", file.mistakes.at(0));
    return VirtualCamera::Create(file.cameras.at(0));
}

std::string TextAt(Control &control, std::uint64_t address)
{
    std::array<std::byte, 64> bytes{};
    EXPECT_EQ(control.ReadMemory(address, bytes), Success);
    return reinterpret_cast<const char *>(bytes.data());
}

TEST(ConfigEffect, IdentityIsInDescriptorsAndRegisters)
{
    const auto camera = CameraOf("vendor = 'Acme'\nmodel = 'Eye'\nfamily = 'Eyes'\ndevice_version = '2.5'\n"
                                 "manufacturer_info = 'made up'\nserial = 'A-1'\nuser_name = 'left'");
    const UsbIdentity identity = camera->Identity();
    Control control(*camera);
    const std::tuple<std::string, std::uint64_t, const char *> rows[] = {
        {identity.vendor, Reg::ManufacturerName, "Acme"},
        {identity.model, Reg::ModelName, "Eye"},
        {identity.family, Reg::FamilyName, "Eyes"},
        {identity.deviceVersion, Reg::DeviceVersion, "2.5"},
        {identity.manufacturerInfo, Reg::ManufacturerInfo, "made up"},
        {identity.serial, Reg::SerialNumber, "A-1"},
        {identity.userDefinedName, Reg::UserDefinedName, "left"},
    };
    for (const auto &[told, address, expected] : rows) {
        EXPECT_EQ(told, expected);
        EXPECT_EQ(TextAt(control, address), expected);
    }
}

TEST(ConfigEffect, LongSerialNumbersThatEndAlikeAreDifferentDevices)
{
    const auto first = CameraOf("serial = 'LINE-A-00000001'"), second = CameraOf("serial = 'LINE-B-00000001'");
    EXPECT_EQ(first->Identity().guid.size(), 12u);
    EXPECT_EQ(second->Identity().guid.size(), 12u);
    EXPECT_NE(first->Identity().guid, second->Identity().guid);
}

TEST(ConfigEffect, SensorSizeIsThatOfTheImage)
{
    const auto camera = CameraOf("");
    Control control(*camera);
    EXPECT_EQ(control.Read(ImageSizeWord::SensorWidth), 128u);
    EXPECT_EQ(control.Read(ImageSizeWord::SensorHeight), 32u);
    control.Write(Reg::Unthrottled, 1);
    EXPECT_EQ(Stream::One(*camera, control).image.size(), 128u * 32);
}

TEST(ConfigEffect, OnlyFormatsOnOfferAreTakenAndTheFirstIsThatOfPowerUp)
{
    const auto camera = CameraOf("pixel_formats = ['BayerRG10', 'Mono8', 'Mono10']");
    Control control(*camera);
    constexpr std::uint32_t coding = Block::PixelCoding, size = Block::PixelSize, value = 0x1C;
    const auto mask = [&](std::uint32_t block, std::uint32_t word) { return control.Read(block + 0x0C + 4 * word); };
    EXPECT_EQ(mask(coding, 0), 1u);
    EXPECT_EQ(mask(coding, 1), 0u);
    EXPECT_EQ(mask(coding, 2), 0u);
    EXPECT_EQ(mask(coding, 3), 1u << (0x63 - 0x60));
    EXPECT_EQ(mask(size, 0), 1u << 8 | 1u << 10);
    for (std::uint32_t selector = 0; selector < 3; ++selector) {
        control.Write(Block::ImageFormatSelector + value, selector);
        EXPECT_EQ(control.Read(Reg::PixelFormat), 0x0110000Du);
        EXPECT_EQ(control.Read(coding + value), 0x63u);
        EXPECT_EQ(control.Read(size + value), 10u);
    }
    for (const PixelFormat &format : s_pixelFormats) {
        const std::string_view name = format.name;
        const bool isOffered = name == "BayerRG10" || name == "Mono8" || name == "Mono10";
        EXPECT_EQ(control.TryWrite(Reg::PixelFormat, format.code), isOffered ? Success : InvalidParameter) << name;
    }
    // A pair that is on offer in its parts alone changes nothing.
    control.Write(Reg::PixelFormat, 0x01080001);
    control.Write(coding + value, 0x63);
    EXPECT_EQ(control.Read(Reg::PixelFormat), 0x01080001u);
    control.Write(size + value, 10);
    EXPECT_EQ(control.Read(Reg::PixelFormat), 0x0110000Du);
}

TEST(ConfigEffect, TheDescriptionListsTheFormatsOnOffer)
{
    const std::uint32_t mono8 = 0x01080001, rgb8 = 0x02180014;
    const std::string xml = OwnXml(std::array{mono8, rgb8});
    const auto has = [&xml](const std::string &entry) {
        return xml.find("<EnumEntry Name=\"" + entry + '"') != std::string::npos;
    };
    for (const char *entry : {"Mono8", "RGB8", "Mono", "RGB", "Bpp8", "Bpp24", "Format0", "GreyHorizontalRamp"}) {
        EXPECT_TRUE(has(entry)) << entry;
    }
    for (const char *entry : {"Mono10", "BayerRG8", "BGR8", "YUV422_8_UYVY", "BGR", "BayerRG", "Bpp10", "Bpp16"}) {
        EXPECT_FALSE(has(entry)) << entry;
    }
}

TEST(ConfigEffect, FrameRateKeepsToTheLimit)
{
    const auto camera = CameraOf("frame_rate_limit = 0.5");
    Control control(*camera);
    constexpr std::uint32_t rate = Block::FrameRate;
    EXPECT_EQ(control.Read(rate + 0x18), 500u);
    EXPECT_EQ(control.Read(rate + 0x1C), 500u);
    EXPECT_EQ(control.TryWrite(rate + 0x1C, 501), InvalidParameter);
    EXPECT_EQ(control.TryWrite(rate + 0x1C, 499), Success);

    // When nobody specifies the rate, too: the second image is two seconds away.
    control.Write(rate + 0x08, 0);
    Stream stream(*camera, control);
    stream.Configure(stream.SimpleCut());
    stream.Post();
    stream.Enable();
    stream.Start();
    stream.Take();
    Transfer second(1024);
    camera->Submit(Endpoint::StreamIn, second);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(second.IsDone());
    EXPECT_TRUE(camera->Cancel(Endpoint::StreamIn, second));
}

TEST(ConfigEffect, ImagesComeNoFasterThanTheLinkCarriesThem)
{
    constexpr std::uint64_t picture = std::uint64_t{128} * 32;
    constexpr std::uint64_t period = picture * 10000; // ns, at 0.1 MB/s
    const auto camera = CameraOf("link_speed = 'low'");
    Control control(*camera);
    control.Write(Block::FrameRate + 0x1C, 1000000);
    Stream stream(*camera, control);
    stream.Configure(stream.SimpleCut());
    for (int i = 0; i < 3; ++i) {
        stream.Post();
    }
    stream.Enable();
    control.Write(Reg::TimestampLatch, 1);
    const std::uint64_t start = control.ReadLong(Reg::Timestamp);
    stream.Start();
    for (std::uint64_t i = 0; i < 3; ++i) {
        const Frame frame = stream.Take();
        EXPECT_GE(frame.time, start + frame.block * period);
        EXPECT_EQ(frame.block, i);
    }
}

TEST(ConfigEffect, PresetsAreThereAfterEachPowerUp)
{
    constexpr std::uint32_t gain = Block::Gain + 0x1C;
    const auto keys = [](std::uint64_t address, int value) {
        return "[[camera.register]]\naddress = " + std::to_string(address) + "\nvalue = " + std::to_string(value) +
               "\n";
    };
    const auto camera = CameraOf(keys(ImageSizeWord::Width, 64) + keys(gain, 600) + keys(Reg::DroppedBlocks, 7) +
                                 keys(Block::Gamma + 0x1C, 100000) + keys(0x1000000, 1));
    Control control(*camera);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(control.Read(gain), 600u);
        EXPECT_EQ(control.Read(Reg::SiRequiredPayload), 64u * 32) << "as if a host had written it";
        EXPECT_EQ(control.Read(Reg::DroppedBlocks), 7u) << "read-only";
        EXPECT_EQ(control.Read(Block::Gamma + 0x1C), 100u) << "what is beyond the limits is not taken";
        control.Write(gain, 0);
        camera->Unplug();
        camera->Plug();
    }
    const auto hidden = CameraOf("control_registers = false\n" + keys(0x600000 + gain - Reg::Control, 600));
    EXPECT_EQ(hidden->PeekRegister(gain), 600u);
}

TEST(ConfigEffect, LinkSpeedIsInTheDescriptorsAndTheRegisterMayTellAnother)
{
    constexpr std::uint64_t speedRegister = Reg::Sbrm + 0x40;
    const std::tuple<const char *, LinkSpeed, std::uint32_t, std::uint16_t> rows[] = {
        {"", LinkSpeed::Super, 8, 1024},
        {"link_speed = 'super+'", LinkSpeed::SuperPlus, 16, 1024},
        {"link_speed = 'high'", LinkSpeed::High, 4, 512},
        {"link_speed = 'full'", LinkSpeed::Full, 2, 64},
        {"speed_register = 'high'", LinkSpeed::Super, 4, 1024},
        {"link_speed = 'high'\nspeed_register = 'super'", LinkSpeed::High, 8, 512},
    };
    for (const auto &[keys, speed, told, packet] : rows) {
        const auto camera = CameraOf(keys);
        EXPECT_EQ(camera->Identity().speed, speed) << keys;
        EXPECT_EQ(camera->Identity().maxPacketSize, packet) << keys;
        EXPECT_EQ(Control(*camera).Read(speedRegister), told) << keys;
    }
}

TEST(ConfigEffect, WithoutControlRegistersNoBlockAnswers)
{
    const auto with = CameraOf(""), without = CameraOf("control_registers = false");
    std::array<std::byte, 4> word{};
    EXPECT_EQ(Control(*with).ReadMemory(ImageSizeWord::SensorWidth, word), Success);
    EXPECT_NE(Control(*without).ReadMemory(ImageSizeWord::SensorWidth, word), Success);
}

TEST(ConfigEffect, SameSeedSameImages)
{
    const auto imagesOf = [](const std::string &keys) {
        const auto camera = CameraOf(keys);
        Control control(*camera);
        control.Write(Reg::Unthrottled, 1);
        Stream stream(*camera, control);
        stream.Configure(stream.SimpleCut());
        std::vector<std::vector<std::byte>> images;
        stream.Enable();
        stream.Start();
        for (int i = 0; i < 5; ++i) {
            stream.Post();
            images.push_back(stream.Take().image);
        }
        return images;
    };
    const auto unseeded = imagesOf(""), seventh = imagesOf("seed = 7");
    EXPECT_EQ(seventh, imagesOf("seed = 7"));
    EXPECT_NE(seventh, imagesOf("seed = 8"));
    EXPECT_NE(seventh, unseeded);
    EXPECT_EQ(unseeded, imagesOf("seed = 0"));
}

TEST(ConfigEffect, WhatIsDrawnOverThePictureCanBeSwitchedOff)
{
    const auto camera = CameraOf("[camera.image]\nsubject = false\nblock_id = false\ndefects = false");
    Control control(*camera);
    control.Write(Reg::Unthrottled, 1);
    const std::vector<std::byte> image = Stream::One(*camera, control).image;
    PictureSettings settings{.sensorWidth = 128, .sensorHeight = 32, .width = 128, .height = 32};
    const Scene scene(settings);
    for (std::uint32_t y = 0; y < 32; ++y) {
        for (std::uint32_t x = 0; x < 128; ++x) {
            ASSERT_EQ(std::to_integer<int>(image[128 * y + x]), scene.Background(x, y).green >> 8) << x << ' ' << y;
        }
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
