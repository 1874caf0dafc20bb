// Cameras with other models' descriptions: what a host does through the nodes shows in the images and in the memory.

#include "HostSide.h"
#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"
#include "vcam/Front.h"

#include <fstream>
#include <numeric>
#include <sstream>

namespace Orvi::Vcam::Test {
namespace {

std::string ReadDescription(const std::string &name)
{
    std::ifstream file(std::string(ORVI_TEST_DESCRIPTIONS "/") + name + ".xml");
    EXPECT_TRUE(file) << name;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

CameraConfig ConfigOf(const std::string &name)
{
    CameraConfig config;
    config.serial = "F1";
    config.sensorWidth = 640;
    config.sensorHeight = 480;
    config.xml = ReadDescription(name);
    return config;
}

/// What a node does is a failure of the test, unless it is refused by the camera: then it is the node's.
class HostPort final : public GenApi::Port {
  public:
    explicit HostPort(Control &control) : control_(control) {}
    void Read(std::uint64_t address, std::span<std::byte> data) override { Check(control_.ReadMemory(address, data)); }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        Check(control_.WriteMemory(address, data));
    }

  private:
    static void Check(GenCpStatus status)
    {
        if (status != GenCpStatus::Success) {
            throw U3v::StatusError(CAM_API_STS_ACCESS_DENIED, std::to_string(static_cast<unsigned>(status)));
        }
    }
    Control &control_;
};

class Foreign {
  public:
    explicit Foreign(const CameraConfig &config) : config_(config) {}
    explicit Foreign(const std::string &name) : Foreign(ConfigOf(name)) {}

    GenApi::NodeId Node(const std::string &name) const { return nodes->Find(name).value(); }
    std::int64_t Int(const std::string &name) const { return nodes->GetInt(Node(name)); }
    void SetInt(const std::string &name, std::int64_t value) { nodes->SetInt(Node(name), value); }
    double Float(const std::string &name) const { return nodes->GetFloat(Node(name)); }
    void SetFloat(const std::string &name, double value) { nodes->SetFloat(Node(name), value); }
    std::string Enum(const std::string &name) const { return std::string(nodes->GetEnumText(Node(name))); }
    void SetEnum(const std::string &name, const std::string &value) { nodes->SetEnumText(Node(name), value); }
    bool Bool(const std::string &name) const { return nodes->GetBool(Node(name)); }
    void SetBool(const std::string &name, bool value) { nodes->SetBool(Node(name), value); }
    void Execute(const std::string &name) { nodes->Execute(Node(name)); }

    /// One image with the present settings.
    Frame Image()
    {
        Stream stream(*camera, control);
        stream.Configure(stream.SimpleCut());
        stream.Post();
        stream.Enable();
        Execute("AcquisitionStart");
        Frame frame = stream.Take();
        Execute("AcquisitionStop");
        control.Write(Reg::SiControl, 0);
        return frame;
    }
    double Brightness()
    {
        const Frame frame = Image();
        const std::size_t skipped = frame.image.size() / frame.height; // the line of the block id
        double sum = 0;
        for (std::size_t i = skipped; i < frame.image.size(); ++i) {
            sum += std::to_integer<unsigned>(frame.image[i]);
        }
        return sum / static_cast<double>(frame.image.size() - skipped);
    }

  private:
    CameraConfig config_;

  public:
    std::shared_ptr<VirtualCamera> camera = VirtualCamera::Create(config_);
    Control control{*camera};
    HostPort port{control};
    std::unique_ptr<GenApi::NodeMap> nodes = GenApi::NodeMap::Load(config_.xml, port);
};

std::vector<std::byte> Reference(const PictureSettings &settings, std::uint64_t block)
{
    std::vector<std::byte> image(settings.ImageBytes());
    RenderReference(settings, block, image);
    return image;
}

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

TEST(ForeignCamera, ExposureAndGainBrighten)
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

TEST(ForeignCamera, AutomaticExposureShows)
{
    Foreign camera("selectors");
    camera.SetFloat("ExposureTime", 1000);
    camera.SetEnum("ExposureAuto", "Continuous");
    camera.camera->PokeRegister(Block::ExposureTime + 0x1C, 15000); // the engine's decision
    EXPECT_EQ(camera.Float("ExposureTime"), 15000);
    camera.SetEnum("ExposureAuto", "Off");
    EXPECT_EQ(camera.Float("ExposureTime"), 15000);
}

TEST(ForeignCamera, SoftwareTriggerTakesOneImage)
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
    EXPECT_EQ(camera.control.TryWrite(0x100020, 5), GenCpStatus::InvalidParameter); // a packed format
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

TEST(ForeignCamera, BinningMakesTheImageFit)
{
    Foreign camera("converters");
    camera.SetInt("BinningHorizontal", 2);
    EXPECT_EQ(camera.Int("WidthMax"), 320);
    EXPECT_EQ(camera.Int("SensorWidth"), 640);
    EXPECT_EQ(camera.Int("Width"), 320);
    EXPECT_EQ(camera.Image().width, 320u);
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

TEST(ForeignCamera, TheTriggerBehindTheSelectorActs)
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

TEST(ForeignCamera, BalanceAndEventsBehindSelectorsAct)
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

TEST(ForeignCamera, EventsCarryTheDescriptionsIds)
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
