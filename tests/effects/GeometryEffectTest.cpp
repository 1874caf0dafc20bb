// Size, place and orientation of the image.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

using GeometryEffectTest = EffectTest;

TEST_F(GeometryEffectTest, WindowShowsItsPartOfTheSensor)
{
    for (const auto &[width, height, offsetX, offsetY] :
         {std::array{128u, 64u, 0u, 0u}, std::array{128u, 64u, 1024u, 700u}, std::array{16u, 2u, 1904u, 1198u},
          std::array{640u, 100u, 640u, 500u}}) {
        SetRoi(width, height, offsetX, offsetY);
        EXPECT_EQ(PayloadSize(), width * height);
        ExpectPicture();
        uint32_t roi[4] = {};
        EXPECT_EQ(GetCamRoi(hCam, &roi[0], &roi[1], &roi[2], &roi[3]), 0u);
        EXPECT_EQ(std::vector(roi, roi + 4), (std::vector{width, height, offsetX, offsetY}));
    }
}

TEST_F(GeometryEffectTest, WholeSensorAfterAWindowAtItsFarEnd)
{
    SetRoi(64, 64, 1856, 1136);
    SetRoi(1920, 1200, 0, 0); // each growing size needs its offset moved first
    ExpectPicture();
    SetRoi(64, 64, 1856, 1136);
}

TEST_F(GeometryEffectTest, SingleSettersChangeTheSameWindow)
{
    ASSERT_EQ(SetCamWidth(hCam, settings_.width = 96), 0u);
    ASSERT_EQ(SetCamHeight(hCam, settings_.height = 48), 0u);
    ASSERT_EQ(SetCamOffsetX(hCam, settings_.offsetX = 32), 0u);
    ASSERT_EQ(SetCamOffsetY(hCam, settings_.offsetY = 20), 0u);
    ExpectPicture();
}

TEST_F(GeometryEffectTest, LimitsDependOnThePartner)
{
    SetRoi(640, 480, 320, 200);
    uint32_t min = 0, max = 0, inc = 0;
    ASSERT_EQ(GetCamWidthMinMax(hCam, &min, &max, &inc), 0u);
    EXPECT_EQ(max, 1920u - 320u);
    EXPECT_EQ(SetCamWidth(hCam, max + inc), CAM_API_STS_INVALID_PARAMETER) << "below the sensor's width, but too wide";
    EXPECT_EQ(SetCamWidth(hCam, min + 1), CAM_API_STS_INVALID_PARAMETER) << "not on the grid";
    EXPECT_EQ(SetCamWidth(hCam, min - inc), CAM_API_STS_INVALID_PARAMETER);
    ASSERT_EQ(GetCamOffsetYMinMax(hCam, &min, &max, &inc), 0u);
    EXPECT_EQ(max, 1200u - 480u);
    EXPECT_EQ(SetCamOffsetY(hCam, max + inc), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture(); // nothing has changed
}

TEST_F(GeometryEffectTest, MirroringTurnsTheImage)
{
    SetRoi(160, 120, 64, 32);
    const Picture plain = ExpectPicture();
    const auto pixel = [](const Picture &picture, std::size_t x, std::size_t y) { return picture.bytes[y * 160 + x]; };
    for (const auto &[x, y] : {std::pair{true, false}, {false, true}, {true, true}}) {
        ASSERT_EQ(SetCamReverseX(hCam, settings_.reverseX = x), 0u);
        ASSERT_EQ(SetCamReverseY(hCam, settings_.reverseY = y), 0u);
        const Picture mirrored = ExpectPicture();
        for (const std::size_t column : {10u, 100u, 159u}) // below the block id
            EXPECT_EQ(pixel(mirrored, x ? 159 - column : column, y ? 119 - 80 : 80), pixel(plain, column, 80));
    }
}

TEST_F(GeometryEffectTest, PicturesAreDrawnByTheirPlaceOnTheSensor)
{
    SetRoi(64, 32, 0, 0);
    const Picture left = Take();
    SetRoi(64, 32, 32, 0);
    const Picture right = Take();
    const std::size_t line = 31 * 64;
    EXPECT_TRUE(std::equal(left.bytes.begin() + line + 32, left.bytes.begin() + line + 64, right.bytes.begin() + line))
        << "what was in the right half is in the left one";
}

TEST_F(GeometryEffectTest, EveryImageFormatHasItsOwnGeometry)
{
    ASSERT_EQ(SetCamImageFormatSelector(hCam, CAM_IMAGE_FORMAT_SELECTOR_FORMAT1), 0u);
    EXPECT_EQ(PayloadSize(), 960u * 600u);
    SetRoi(160, 120, 0, 0);
    settings_.binningX = settings_.binningY = 2;
    ExpectPicture();
    ASSERT_EQ(SetCamImageFormatSelector(hCam, CAM_IMAGE_FORMAT_SELECTOR_FORMAT2), 0u);
    SetRoi(80, 60, 0, 0);
    settings_.binningX = settings_.binningY = 1;
    settings_.decimationX = settings_.decimationY = 2;
    ExpectPicture();
    ASSERT_EQ(SetCamImageFormatSelector(hCam, CAM_IMAGE_FORMAT_SELECTOR_FORMAT0), 0u);
    EXPECT_EQ(PayloadSize(), 160u * 120u);
}

TEST_F(GeometryEffectTest, GeometryAndFormatAreRefusedWhileStreaming)
{
    const Picture before = Take();
    bool isEnabled = false;
    {
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        EXPECT_EQ(GetCamStreamEnable(hCam, &isEnabled), 0u);
        EXPECT_TRUE(isEnabled);
        const std::pair<const char *, CAM_API_STATUS> refused[] = {
            {"Width", SetCamWidth(hCam, 64)},
            {"Height", SetCamHeight(hCam, 64)},
            {"OffsetX", SetCamOffsetX(hCam, 16)},
            {"OffsetY", SetCamOffsetY(hCam, 16)},
            {"Roi", SetCamRoi(hCam, 64, 64, 16, 16)},
            {"BinningHorizontal", SetCamBinningHorizontal(hCam, 2)},
            {"BinningVertical", SetCamBinningVertical(hCam, 2)},
            {"DecimationHorizontal", SetCamDecimationHorizontal(hCam, 2)},
            {"DecimationVertical", SetCamDecimationVertical(hCam, 2)},
            {"PixelFormat", SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO16)},
            {"ImageFormatSelector", SetCamImageFormatSelector(hCam, CAM_IMAGE_FORMAT_SELECTOR_FORMAT1)},
            {"ImageBufferMode", SetCamImageBufferMode(hCam, CAM_IMAGE_BUFFER_MODE_ON)},
        };
        for (const auto &[name, status] : refused)
            EXPECT_EQ(status, CAM_API_STS_NOT_WRITABLE) << name;
        EXPECT_EQ(SetCamReverseX(hCam, true), 0u) << "mirroring is free";
        EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_BLACK), 0u);
        EXPECT_EQ(SetCamReverseX(hCam, false), 0u);
        EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_OFF), 0u);
        channel.Stop();
        EXPECT_EQ(GetCamStreamEnable(hCam, &isEnabled), 0u);
        EXPECT_FALSE(isEnabled);
    }
    EXPECT_TRUE(Take().bytes == before.bytes) << "nothing of it has happened";
    EXPECT_EQ(SetCamWidth(hCam, 64), 0u);
}

} // namespace
} // namespace Orvi::Testing
