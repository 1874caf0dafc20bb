#include "tests/effects/EffectTest.h"

#include <chrono>
#include <thread>

namespace Orvi::Testing {

EffectTest::EffectTest() : hCam(Open())
{
    // The cameras live as long as the process: what an earlier test has set is taken back.
    WriteWord(hCam, Virtual::commandDelay, 0);
    WriteWord(hCam, Virtual::lineLevels, 0);
    WriteWord(hCam, Virtual::userSetSelector, 0);
    WriteWord(hCam, Virtual::userSetLoad, 1);
    WriteWord(hCam, Virtual::commandDelay, 0); // done at once
    settings_.sensorWidth = 1920;
    settings_.sensorHeight = 1200;
    SetRoi(160, 120, 0, 0);
}

void EffectTest::SetRoi(uint32_t width, uint32_t height, uint32_t offsetX, uint32_t offsetY)
{
    ASSERT_EQ(SetCamRoi(hCam, width, height, offsetX, offsetY), 0u);
    settings_.width = width;
    settings_.height = height;
    settings_.offsetX = offsetX;
    settings_.offsetY = offsetY;
}

uint32_t EffectTest::PayloadSize() const
{
    uint32_t size = 0;
    EXPECT_EQ(GetCamStreamPayloadSize(hCam, &size), 0u);
    return size;
}

Picture EffectTest::Copy(const Delivered &delivered)
{
    EXPECT_EQ(delivered.info.uiStatus, 0u);
    return {delivered.info, {delivered.image, delivered.image + delivered.size}};
}

Picture EffectTest::Take()
{
    RequestChannel channel(hCam, 1);
    channel.EnqueueAll();
    channel.Start();
    Picture picture = Copy(channel.Next());
    channel.Stop();
    return picture;
}

Picture EffectTest::ExpectPicture()
{
    Picture picture = Take();
    ExpectPicture(picture);
    return picture;
}

void EffectTest::ExpectPicture(const Picture &picture) const
{
    EXPECT_EQ(picture.info.uiPixelFormat, settings_.pixelFormat);
    EXPECT_EQ(picture.info.uiWidth, settings_.width);
    EXPECT_EQ(picture.info.uiHeight, settings_.height);
    EXPECT_EQ(picture.info.uiOffsetX, settings_.offsetX);
    EXPECT_EQ(picture.info.uiOffsetY, settings_.offsetY);
    std::vector<std::byte> wanted(settings_.ImageBytes());
    Vcam::RenderReference(settings_, picture.info.ullBlockId, wanted);
    EXPECT_EQ(picture.bytes.size(), wanted.size());
    EXPECT_TRUE(picture.bytes == wanted) << "block " << picture.info.ullBlockId;
}

double EffectTest::FloatNode(const char *name) const
{
    double value = 0;
    EXPECT_EQ(Nd_GetFloatValue(hCam, Node(hCam, name), &value, false, false), 0u) << name;
    return value;
}

bool EffectTest::BoolNode(const char *name) const
{
    bool value = false;
    EXPECT_EQ(Nd_GetBoolValue(hCam, Node(hCam, name), &value, false, false), 0u) << name;
    return value;
}

std::string EffectTest::EnumNode(const char *name) const
{
    char text[64] = "";
    uint32_t size = sizeof text;
    EXPECT_EQ(Nd_GetEnumStrValue(hCam, Node(hCam, name), text, &size, false, false), 0u) << name;
    return text;
}

void EffectTest::SetBoolNode(const char *name, bool value) const
{
    EXPECT_EQ(Nd_SetBoolValue(hCam, Node(hCam, name), value, true), 0u) << name;
}

std::string EffectTest::GenICamError()
{
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    return error.pszMessage == nullptr ? "" : error.pszMessage;
}

uint32_t EffectTest::LineStatus() const
{
    uint32_t levels = 0;
    EXPECT_EQ(GetCamLineStatusAll(hCam, &levels), 0u);
    return levels;
}

uint64_t EffectTest::DeviceTime() const
{
    constexpr uint64_t latch = 0x1F8, low = 0x1F0, high = 0x1F4;
    WriteWord(hCam, latch, 1);
    return ReadWord(hCam, low) | uint64_t{ReadWord(hCam, high)} << 32;
}

bool EffectTest::Eventually(const std::function<bool()> &condition)
{
    for (uint32_t waited = 0; waited < patience; ++waited) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

} // namespace Orvi::Testing
