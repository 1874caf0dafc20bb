// Cameras of a description file, as applications see them.

#include "tests/e2e/RequestChannel.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace Orvi::Testing {

namespace {

/// Enumerates the cameras of a file beside those that there are.
class DescribedCameraTest : public ::testing::Test {
  protected:
    DescribedCameraTest()
    {
        setenv("HOME", TempFolder::OfProcess().c_str(), 1);
        setenv("ORVICAMSDK", ORVI_TEST_SDK, 1);
        setenv("ORVI_TRANSPORT", "virtual", 1);
        setenv("ORVI_VIRTUAL_CAMERAS", "1", 1);
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    }
    ~DescribedCameraTest() override { EXPECT_EQ(Sys_Terminate(), 0u); }

    /// Opens a camera with a small image and no limit of its frame rate. Terminating closes it.
    static CAM_HANDLE Open(uint32_t index)
    {
        CAM_HANDLE hCam = 0;
        EXPECT_EQ(Cam_Open(index, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
        SetInt(hCam, "Width", 64);
        SetInt(hCam, "Height", 16);
        WriteWord(hCam, Virtual::unthrottled, 1);
        return hCam;
    }

    static std::string Write(const std::string &name, const std::string &text)
    {
        std::string path = TempFolder::OfProcess() / name;
        std::ofstream(path) << text;
        return path;
    }
    static uint32_t Enumerate(const std::string &file)
    {
        setenv("ORVI_VIRTUAL_CAMERAS", file.c_str(), 1);
        uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
        return count;
    }
    static CAM_INFO Information(CAM_HANDLE hCam, uint32_t index)
    {
        CAM_INFO info{};
        EXPECT_EQ(Cam_GetInformation(hCam, index, &info), 0u);
        return info;
    }
    /// The index of the only camera of a file with these keys.
    static uint32_t Add(const std::string &serial, const std::string &keys)
    {
        const uint32_t count = Enumerate(Write(serial + ".toml", "[[camera]]\nserial = '" + serial + "'\n" + keys));
        for (uint32_t index = 0; index < count; ++index) {
            if (Information(0, index).szSerialNumber == serial) {
                return index;
            }
        }
        ADD_FAILURE() << "no camera " << serial;
        return 0;
    }
};

} // namespace

TEST_F(DescribedCameraTest, AClosedCameraTellsTheDescriptorsSpeedAndAnOpenOneTheRegisters)
{
    const uint32_t index = Add("SPEED", "link_speed = 'super'\nspeed_register = 'high'");
    EXPECT_EQ(Information(0, index).uiLinkSpeed, 8u);
    EXPECT_EQ(Information(Open(index), index).uiLinkSpeed, 4u);
}

TEST_F(DescribedCameraTest, TheFormatsOnOfferAreTheListed)
{
    const CAM_HANDLE hCam = Open(Add("FORMATS", "pixel_formats = ['Mono8', 'BGR8', 'BayerGB12']"));
    std::vector<std::string> names;
    for (const PixelFormat &format : PixelFormats(hCam)) {
        names.push_back(format.name);
    }
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"BGR8", "BayerGB12", "Mono8"}));
    EXPECT_NE(Nd_SetEnumStrValue(hCam, Node(hCam, "PixelFormat"), "RGB8", true), 0u);
}

TEST_F(DescribedCameraTest, FaultsOfTheFileHappen)
{
    const CAM_HANDLE hCam = Open(Add("FAULTS", R"([[camera.fault]]
on = "frame"
at = 2
action = "trailer-status"
amount = 0xA100
[[camera.fault]]
on = "write"
address = 0x0F000010
value = 5
action = "poke"
target = 0x0F000004
amount = 1234
)"));
    RequestChannel channel(hCam, 4);
    channel.EnqueueAll();
    channel.Start();
    for (uint64_t block = 0; block < 4; ++block) {
        const Delivered done = channel.Next();
        EXPECT_EQ(done.info.ullBlockId, block);
        EXPECT_EQ(done.info.uiStatus, block == 2 ? 0xA100u : 0u) << block;
    }
    channel.Stop();

    WriteWord(hCam, 0x0F000010, 4);
    EXPECT_EQ(ReadWord(hCam, Virtual::replugAfter), 0u);
    WriteWord(hCam, 0x0F000010, 5);
    EXPECT_EQ(ReadWord(hCam, Virtual::replugAfter), 1234u);
}

TEST_F(DescribedCameraTest, ImagesOfTheFileArriveAsTheyAre)
{
    std::string pixels;
    for (int i = 0; i < 64 * 16; ++i) {
        pixels += static_cast<char>(i * 37 % 251);
    }
    Write("image.pgm", "P5 64 16 255\n" + pixels);
    const CAM_HANDLE hCam =
        Open(Add("IMAGES", "sensor_width = 64\nsensor_height = 16\n[camera.image]\nsource = 'images'\n"
                           "path = 'image.pgm'\n"));
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    const Delivered done = channel.Next();
    ASSERT_EQ(done.size, pixels.size());
    EXPECT_EQ(std::memcmp(done.image, pixels.data(), pixels.size()), 0);
    channel.Stop();
    channel.Flush();
}

TEST_F(DescribedCameraTest, AFileWithAMistakeAddsNoCameraAndTheLastErrorTellsIt)
{
    uint32_t before = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&before), 0u);
    const std::string path = Write("wrong.toml", "[[camera]]\nserial = 'WRONG'\nvendor = 1\n");
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Enumerate(path), before);
    EXPECT_EQ(Enumerate(path), before);
    const std::string said = ::testing::internal::GetCapturedStderr();
    const std::string expected = path +
                                 ":3:10: vendor takes a text, not an integer: write it in quotes; there are no virtual "
                                 "cameras: 'orvicam vcam check " +
                                 path + "' tells all mistakes";
    EXPECT_EQ(said, expected + "\n") << "told once";
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0u);
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    EXPECT_EQ(std::string(error.pszMessage), expected);

    // Mended, it is read at the next look.
    Write("wrong.toml", "[[camera]]\nserial = 'WRONG'\nvendor = '1'\n");
    EXPECT_EQ(Enumerate(path), before + 1);
}

} // namespace Orvi::Testing
