// Cameras with other models' descriptions: what a host does through the nodes shows in the images and in the memory.

#include "ForeignFixture.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

namespace Orvi::Vcam::Test {
namespace {

TEST(ForeignCamera, CanBeUsedAfterPowerUp)
{
    Foreign converters("converters");
    EXPECT_EQ(converters.Int("Width"), 640);
    EXPECT_EQ(converters.Int("WidthMax"), 640);
    EXPECT_EQ(converters.Int("Height"), 480);
    EXPECT_EQ(converters.Enum("PixelFormat"), "Mono8"); // the first that the camera can paint
    EXPECT_EQ(converters.Enum("AcquisitionMode"), "Continuous");
    EXPECT_DOUBLE_EQ(converters.Float("ExposureTime"), 10000);
    EXPECT_DOUBLE_EQ(converters.Float("AcquisitionFrameRate"), 1e6 / 33333);
    EXPECT_EQ(converters.Float("Gamma"), 1);
    EXPECT_EQ(converters.nodes->GetString(converters.Node("DeviceVendorName")), "Lathe Optics");
    EXPECT_EQ(converters.camera->Identity().vendor, "Lathe Optics");
    EXPECT_EQ(converters.camera->Identity().model, "Convert 640");

    Foreign bigEndian("big_endian");
    EXPECT_EQ(bigEndian.Int("Width"), 640); // its limits are registers
    EXPECT_EQ(bigEndian.Int("ExposureTime"), 10000);
    EXPECT_EQ(bigEndian.nodes->GetString(bigEndian.Node("DeviceModelName")), "Mountain");
}

TEST(ForeignCamera, NamesOfTheConfigurationComeFirst)
{
    CameraConfig config = ConfigOf("converters");
    config.vendor = "Mine";
    Foreign camera(config);
    EXPECT_EQ(camera.nodes->GetString(camera.Node("DeviceVendorName")), "Mine");
}

TEST(ForeignCamera, ImageFollowsSizeOffsetsAndFormat)
{
    Foreign camera("converters");
    camera.SetInt("Width", 72);
    camera.SetInt("Height", 20);
    camera.SetInt("OffsetX", 200);
    camera.SetInt("OffsetY", 102);
    camera.SetEnum("PixelFormat", "Mono12");
    EXPECT_EQ(camera.Int("PayloadSize"), 72 * 20 * 2);
    EXPECT_EQ(camera.control.Read(Reg::SiRequiredPayload), 72u * 20 * 2);
    const Frame frame = camera.Image();
    EXPECT_EQ(frame.pixelFormat, 0x01100005u);
    EXPECT_EQ(frame.width, 72u);
    EXPECT_EQ(frame.height, 20u);
    EXPECT_EQ(frame.offsetX, 200u);
    EXPECT_EQ(frame.offsetY, 102u);

    PictureSettings settings;
    settings.sensorWidth = 640;
    settings.sensorHeight = 480;
    settings.width = 72;
    settings.height = 20;
    settings.offsetX = 200;
    settings.offsetY = 102;
    settings.pixelFormat = 0x01100005;
    EXPECT_EQ(frame.image, Reference(settings, frame.block));
}

TEST(ForeignCamera, BigEndianRegistersDoTheSame)
{
    Foreign camera("big_endian");
    camera.SetInt("Width", 99);
    camera.SetInt("Height", 7);
    camera.SetEnum("PixelFormat", "Mono16");
    camera.SetBool("ReverseY", true);
    camera.SetInt("Spare", 0x1234);
    EXPECT_EQ(camera.Int("PayloadSize"), 99 * 7 * 2);
    const Frame frame = camera.Image();
    PictureSettings settings;
    settings.sensorWidth = 640;
    settings.sensorHeight = 480;
    settings.width = 99;
    settings.height = 7;
    settings.pixelFormat = 0x01100007;
    settings.reverseY = true;
    EXPECT_EQ(frame.image, Reference(settings, frame.block));
    EXPECT_TRUE(camera.Bool("ReverseY"));
    EXPECT_EQ(camera.Int("Spare"), 0x1234);
    EXPECT_EQ(camera.control.Read(0x2020A8), 0x01003412u); // big-endian registers count their bits from the top
}

TEST(ForeignCamera, OneRegisterStartsWithOneAndStopsWithNought)
{
    Foreign camera("big_endian");
    camera.SetInt("Width", 64);
    camera.SetInt("Height", 16);
    camera.SetEnum("TriggerMode", "On");
    Stream stream(*camera.camera, camera.control);
    stream.Configure(stream.SimpleCut());
    stream.Post();
    stream.Enable();
    camera.Execute("AcquisitionStart");
    EXPECT_EQ(camera.camera->PeekRegister(Reg::AcquisitionActive), 1u);
    camera.Execute("TriggerSoftware"); // of a command value beyond a byte
    EXPECT_EQ(stream.Take().width, 64u);
    camera.Execute("AcquisitionStop");
    EXPECT_TRUE(Eventually([&] { return camera.camera->PeekRegister(Reg::AcquisitionActive) == 0; }));
}

TEST(ForeignCamera, OtherRegistersKeepWhatIsWritten)
{
    Foreign camera("converters");
    camera.SetInt("MakersOwn", 0x12345678);
    EXPECT_EQ(camera.Int("MakersOwn"), 0x12345678);
    EXPECT_EQ(camera.control.Read(0x100084), 0x12345678u);
    // Any bytes of a register that is wide.
    std::vector<std::byte> data(37);
    std::iota(reinterpret_cast<unsigned char *>(data.data()), reinterpret_cast<unsigned char *>(data.data()) + 37, 1);
    EXPECT_EQ(camera.control.WriteMemory(0x101007, data), GenCpStatus::Success);
    std::vector<std::byte> back(37);
    EXPECT_EQ(camera.control.ReadMemory(0x101007, back), GenCpStatus::Success);
    EXPECT_EQ(back, data);
    camera.nodes->SetString(camera.Node("DeviceUserID"), "left");
    EXPECT_EQ(camera.camera->Identity().userDefinedName, "left");
}

TEST(ForeignCamera, RightsAndLimitsOfTheMemory)
{
    Foreign camera("converters");
    std::vector<std::byte> word(4);
    const auto read = [&](std::uint64_t address) { return camera.control.ReadMemory(address, word); };
    EXPECT_EQ(read(0x202060), GenCpStatus::InvalidAddress); // a block of the camera's own map
    EXPECT_EQ(read(0x230000), GenCpStatus::InvalidAddress);
    EXPECT_EQ(read(0x100034), GenCpStatus::InvalidAddress); // between registers
    EXPECT_EQ(read(0x10002C), GenCpStatus::AccessDenied);   // write-only
    EXPECT_EQ(camera.control.TryWrite(0x100034, 1), GenCpStatus::InvalidAddress);
    EXPECT_EQ(camera.control.TryWrite(0x100080, 1), GenCpStatus::WriteProtect);
    EXPECT_EQ(camera.control.TryWrite(0x100010, 648), GenCpStatus::InvalidParameter); // beyond the sensor
    EXPECT_EQ(camera.Int("Width"), 640);
    EXPECT_EQ(camera.control.TryWrite(0x100020, 9), GenCpStatus::InvalidParameter); // no format of pictures
    EXPECT_EQ(camera.Enum("PixelFormat"), "Mono8");
}

TEST(ForeignCamera, PresetsComeBeforeTheDefaults)
{
    CameraConfig config = ConfigOf("converters");
    config.presets = {{0x100010, 320}, {0x100080, 0x42280000}, {0x100084, 77}};
    Foreign camera(config);
    EXPECT_EQ(camera.Int("Width"), 320);
    EXPECT_EQ(camera.Float("DeviceTemperature"), 42);
    EXPECT_EQ(camera.Int("MakersOwn"), 77);
    camera.SetInt("MakersOwn", 1);
    camera.camera->Unplug();
    camera.camera->Plug();
    camera.nodes->Invalidate();
    EXPECT_EQ(camera.Int("MakersOwn"), 77);
    EXPECT_EQ(camera.control.Read(Reg::SiRequiredPayload), 320u * 480);
}

TEST(ForeignCamera, EachChoiceOfASelectorHasItsOwnValue)
{
    Foreign camera("selectors");
    const std::string selectors[] = {"AcquisitionStart", "FrameStart", "FrameBurstStart"};
    for (const std::string &selector : selectors) {
        camera.SetEnum("TriggerSelector", selector);
        EXPECT_EQ(camera.Enum("TriggerMode"), "Off") << selector;
        EXPECT_EQ(camera.Enum("TriggerSource"), "Software") << selector; // its value is 1, not 0
    }
    camera.SetEnum("TriggerSource", "Line0");
    camera.SetEnum("TriggerSelector", "FrameStart");
    EXPECT_EQ(camera.Enum("TriggerSource"), "Software");
    // Memory of choices that are not made is there too.
    std::vector<std::byte> word(2);
    EXPECT_EQ(camera.control.ReadMemory(0x11000 + 2 * 255, word), GenCpStatus::Success);
    EXPECT_EQ(camera.control.ReadMemory(0x11000 + 2 * 256, word), GenCpStatus::InvalidAddress);
    camera.SetInt("LUTIndex", 200);
    camera.SetInt("LUTValue", 4000);
    camera.SetInt("LUTIndex", 0);
    EXPECT_EQ(camera.Int("LUTValue"), 0);
    camera.SetInt("LUTIndex", 200);
    EXPECT_EQ(camera.Int("LUTValue"), 4000);
}

TEST(ForeignCamera, UserSetsKeepAllRegisters)
{
    Foreign camera("selectors");
    camera.SetInt("Width", 160);
    camera.SetFloat("ExposureTime", 700);
    camera.SetEnum("UserSetSelector", "UserSet2");
    camera.Execute("UserSetSave");
    EXPECT_TRUE(camera.nodes->IsDone(camera.Node("UserSetSave")));
    camera.SetInt("Width", 320);
    camera.SetFloat("ExposureTime", 900);
    camera.Execute("UserSetLoad");
    EXPECT_EQ(camera.Int("Width"), 160);
    EXPECT_EQ(camera.Float("ExposureTime"), 700);
    EXPECT_EQ(camera.Enum("UserSetSelector"), "UserSet2");
    EXPECT_EQ(camera.camera->PeekRegister(ImageSizeWord::Width), 160u);
    camera.SetEnum("UserSetDefault", "UserSet2");
    camera.SetInt("Width", 200);
    camera.camera->Unplug();
    camera.camera->Plug();
    EXPECT_EQ(camera.Int("Width"), 160);
    EXPECT_EQ(camera.Enum("UserSetDefault"), "UserSet2");
    camera.SetEnum("UserSetSelector", "Default");
    EXPECT_THROW(camera.Execute("UserSetSave"), GenApi::Error);
    camera.Execute("UserSetLoad");
    EXPECT_EQ(camera.Int("Width"), 640);
}

TEST(ForeignCamera, UserSetsAreKeptInTheStateFile)
{
    const Testing::TempFolder folder;
    CameraConfig config = ConfigOf("selectors");
    config.stateFile = (folder.Path() / "F1.state").string();
    {
        Foreign camera(config);
        camera.SetInt("Width", 160);
        EXPECT_FALSE(std::filesystem::exists(config.stateFile)) << "nothing to keep yet";
        camera.SetEnum("UserSetSelector", "UserSet2");
        camera.Execute("UserSetSave");
        camera.SetEnum("UserSetDefault", "UserSet2");
        camera.SetInt("Width", 320);
    }
    {
        Foreign camera(config);
        EXPECT_EQ(camera.Int("Width"), 160) << "the set of power-up";
        EXPECT_EQ(camera.Enum("UserSetDefault"), "UserSet2");
        camera.SetEnum("UserSetSelector", "Default");
        camera.Execute("UserSetLoad");
        EXPECT_EQ(camera.Int("Width"), 640);
        camera.SetEnum("UserSetSelector", "UserSet2");
        camera.Execute("UserSetLoad");
        EXPECT_EQ(camera.Int("Width"), 160);
        EXPECT_EQ(camera.camera->PeekRegister(ImageSizeWord::Width), 160u);
    }
    config.xml += "<!-- another one -->";
    testing::internal::CaptureStderr();
    Foreign other(config);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("another description"), std::string::npos);
    EXPECT_EQ(other.Int("Width"), 640);
}

TEST(ForeignCamera, InterfaceRegistersMakeWayForTheDescriptions)
{
    Foreign camera("selectors");
    const std::uint64_t sbrm = camera.control.ReadLong(Reg::SbrmAddress);
    EXPECT_EQ(camera.Int("WidthMax"), 640); // at 0x10000
    EXPECT_NE(sbrm, Reg::Sbrm);
    const std::uint64_t sirm = camera.control.ReadLong(sbrm + 0x20), eirm = camera.control.ReadLong(sbrm + 0x2C);
    EXPECT_EQ(camera.control.Read(sirm + 0x08), static_cast<std::uint32_t>(camera.Int("PayloadSize")));
    EXPECT_EQ(camera.control.Read(eirm + 0x04), 1024u);
    const std::uint64_t manifest = camera.control.ReadLong(Reg::ManifestTableAddress);
    EXPECT_EQ(camera.control.ReadLong(manifest), 1u);
    EXPECT_EQ(camera.control.Read(camera.control.ReadLong(manifest + 8 + 0x08)), 0x04034B50u); // a zip file
    EXPECT_EQ(camera.control.Read(sbrm + 4) & 0x4, 0u);                                        // no control registers
}

TEST(ForeignCamera, DescriptionsThatCannotBeUsedAreRefused)
{
    CameraConfig config = ConfigOf("converters");
    config.xml = "<RegisterDescription><Integer";
    EXPECT_THROW(VirtualCamera::Create(config), std::runtime_error);
    config.xml = "<html/>";
    EXPECT_THROW(VirtualCamera::Create(config), std::runtime_error);
    config.xml = ReadDescription("converters");
    config.xml.replace(config.xml.find("<pValue>WidthReg"), 16, "<pValue>Missing_"); // a dangling reference
    EXPECT_THROW(VirtualCamera::Create(config), std::runtime_error);
}

} // namespace
} // namespace Orvi::Vcam::Test
