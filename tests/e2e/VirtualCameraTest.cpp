#include "tests/e2e/VirtualCameraTest.h"

#include "tests/support/TempFolder.h"

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <utility>

namespace Orvi::Testing {

namespace {
constexpr int smallWidth = 64, smallHeight = 8;
}

VirtualCameraTest::VirtualCameraTest(const char *cameras, uint32_t count)
{
    setenv("HOME", TempFolder::OfProcess().c_str(), 1);
    // Who chooses the link is on a machine of its own and knows where the SDK is there.
    setenv("ORVICAMSDK", ORVI_TEST_SDK, std::getenv("ORVI_E2E_LINK") == nullptr);
    setenv("ORVI_VIRTUAL_CAMERAS", cameras, 1);
    setenv("ORVI_TRANSPORT", IsOverUsb() ? "usb" : "virtual", 1);
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    AwaitCameras(count);
    if (IsOverUsb())
        Restart();
}

VirtualCameraTest::~VirtualCameraTest()
{
    for (const CAM_HANDLE hCam : open_)
        Cam_Close(hCam);
    EXPECT_EQ(Sys_Terminate(), 0u);
}

/// Cameras of another process keep what earlier tests have done to them. The first test plugs them in anew; before the
/// others they get the factory's settings.
void VirtualCameraTest::Restart()
{
    static bool s_isFresh = false;
    const bool powerOff = !std::exchange(s_isFresh, true);
    for (uint32_t index = 0; index < 2; ++index) {
        CAM_HANDLE hGone = 0, hCam = 0;
        EXPECT_EQ(Sys_CreateSignal(&hGone), 0u);
        EXPECT_EQ(TryOpen(index, reinterpret_cast<void *>(hGone), false, hCam), 0u);
        if (powerOff) {
            WriteWord(hCam, Virtual::replugAfter, 1);
            WriteWord(hCam, Virtual::unplug, 1);
            EXPECT_EQ(Sys_WaitForSignal(hGone, patience), 0u) << "the camera does not leave";
        } else {
            constexpr uint64_t userSetSelector = 0x230034, userSetLoad = 0x230038, commandDelay = 0x0F00001C;
            for (const uint64_t setting : {Virtual::replugAfter, Virtual::unthrottled, commandDelay, userSetSelector})
                WriteWord(hCam, setting, 0);
            WriteWord(hCam, userSetLoad, 1);
            WriteWord(hCam, commandDelay, 0); // done at once: a test's own user sets would be refused until then
        }
        EXPECT_EQ(Cam_Close(hCam), 0u);
        EXPECT_EQ(Sys_CloseSignal(hGone), 0u);
    }
    if (powerOff)
        AwaitCameras(2);
}

CAM_API_STATUS VirtualCameraTest::TryOpen(uint32_t index, void *removalSignal, bool useGenICam, CAM_HANDLE &hCam)
{
    for (uint32_t waited = 0;; waited += 50) {
        const CAM_API_STATUS status =
            Cam_Open(index, &hCam, removalSignal, useGenICam, nullptr, CAM_ACCESS_MODE_CONTROL);
        // What was pulled out a moment ago may still be listed by the kernel, instead of what was put in.
        if (status != CAM_API_STS_CAMERA_NOT_RESPONDING || !IsOverUsb() || waited >= patience)
            return status;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        AwaitCameras(2);
    }
}

void VirtualCameraTest::AwaitCameras(uint32_t count)
{
    uint32_t found = 0;
    for (uint32_t waited = 0; waited < patience; waited += 10) {
        EXPECT_EQ(Sys_GetNumOfCameras(&found), 0u);
        if (found == count)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ADD_FAILURE() << found << " cameras instead of " << count;
}

void VirtualCameraTest::AwaitDrops(CAM_HANDLE hCam, uint32_t more)
{
    const uint32_t before = ReadWord(hCam, Virtual::droppedBlocks);
    for (uint32_t waited = 0; waited < patience; ++waited) {
        if (ReadWord(hCam, Virtual::droppedBlocks) - before >= more)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ADD_FAILURE() << "the camera drops no image";
}

CAM_HANDLE VirtualCameraTest::Open(uint32_t index)
{
    CAM_HANDLE hCam = 0;
    EXPECT_EQ(TryOpen(index, nullptr, true, hCam), 0u);
    open_.push_back(hCam);
    SetEnum(hCam, "PixelFormat", "Mono8");
    SetInt(hCam, "Width", smallWidth);
    SetInt(hCam, "Height", smallHeight);
    WriteWord(hCam, Virtual::unthrottled, 1);
    return hCam;
}

bool IsOverUsb()
{
    const char *link = std::getenv("ORVI_E2E_LINK");
    return link != nullptr && std::string_view(link) == "usb";
}

uint32_t ReadWord(CAM_HANDLE hCam, uint64_t address)
{
    uint32_t value = 0;
    EXPECT_EQ(Cam_ReadReg(hCam, address, 1, &value), 0u) << std::hex << address;
    return value;
}

void WriteWord(CAM_HANDLE hCam, uint64_t address, uint32_t value)
{
    EXPECT_EQ(Cam_WriteReg(hCam, address, 1, &value), 0u) << std::hex << address;
}

CAM_HANDLE Node(CAM_HANDLE hCam, const char *name)
{
    CAM_HANDLE hNode = 0;
    EXPECT_EQ(Nd_GetNode(hCam, name, &hNode), 0u) << name;
    return hNode;
}

int64_t GetInt(CAM_HANDLE hCam, const char *name)
{
    int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(hCam, Node(hCam, name), &value, false, false), 0u) << name;
    return value;
}

void SetInt(CAM_HANDLE hCam, const char *name, int64_t value)
{
    EXPECT_EQ(Nd_SetIntValue(hCam, Node(hCam, name), value, true), 0u) << name;
}

void SetFloat(CAM_HANDLE hCam, const char *name, double value)
{
    EXPECT_EQ(Nd_SetFloatValue(hCam, Node(hCam, name), value, true), 0u) << name;
}

void SetEnum(CAM_HANDLE hCam, const char *name, const char *value)
{
    EXPECT_EQ(Nd_SetEnumStrValue(hCam, Node(hCam, name), value, true), 0u) << name << " = " << value;
}

std::vector<PixelFormat> PixelFormats(CAM_HANDLE hCam)
{
    const CAM_HANDLE hNode = Node(hCam, "PixelFormat");
    uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfEnumEntries(hCam, hNode, &count), 0u);
    std::vector<PixelFormat> formats;
    for (uint32_t i = 0; i < count; ++i) {
        CAM_HANDLE hEntry = 0;
        char name[64] = "";
        uint32_t size = sizeof name;
        int64_t code = 0;
        EXPECT_EQ(Nd_GetEnumEntryByIndex(hCam, hNode, i, &hEntry), 0u);
        EXPECT_EQ(Nd_GetEnumEntryStrValue(hCam, hEntry, name, &size), 0u);
        EXPECT_EQ(Nd_GetEnumEntryIntValue(hCam, hEntry, &code), 0u);
        formats.push_back({name, static_cast<uint32_t>(code)});
    }
    return formats;
}

namespace {

/// Where a pixel's brightness begins in the first line.
std::size_t BrightnessOffset(uint32_t pixel, uint32_t pixelFormat)
{
    constexpr uint32_t yuv411 = 0x020C001E, yuv422 = 0x0210001F;
    if (pixelFormat == yuv411) // U Y Y V Y Y
        return pixel / 2 * 3 + 1 + pixel % 2;
    if (pixelFormat == yuv422) // U Y V Y
        return pixel * 2 + 1;
    return pixel * ((pixelFormat >> 16 & 0xFF) / 8);
}

} // namespace

uint64_t DrawnBlockId(const void *image, uint32_t pixelFormat)
{
    const auto *bytes = static_cast<const unsigned char *>(image);
    uint64_t id = 0;
    for (uint32_t pixel = 0; pixel < 64; ++pixel) {
        const unsigned char low = bytes[BrightnessOffset(pixel, pixelFormat)];
        EXPECT_TRUE(low == 0 || low == 0xFF) << "pixel " << pixel << " is neither black nor white";
        id = id << 1 | (low != 0);
    }
    return id;
}

} // namespace Orvi::Testing
