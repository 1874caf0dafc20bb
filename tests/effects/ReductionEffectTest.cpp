// Fewer pixels of the same picture: binning and decimation.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

using ReductionEffectTest = EffectTest;

TEST_F(ReductionEffectTest, BinningSumsUpAndMakesTheImageSmaller)
{
    ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure = 2000), 0u);
    for (const auto &[horizontal, vertical] : {std::pair{2u, 1u}, {1u, 4u}, {3u, 3u}, {1u, 1u}}) {
        ASSERT_EQ(SetCamBinningHorizontal(hCam, settings_.binningX = horizontal), 0u);
        ASSERT_EQ(SetCamBinningVertical(hCam, settings_.binningY = vertical), 0u);
        ExpectPicture();
        uint32_t width = 0, height = 0;
        EXPECT_EQ(GetCamSensorWidth(hCam, &width), 0u);
        EXPECT_EQ(GetCamSensorHeight(hCam, &height), 0u);
        EXPECT_EQ(width, 1920 / horizontal) << "what is left of the sensor";
        EXPECT_EQ(height, 1200 / vertical);
    }
    EXPECT_EQ(SetCamBinningHorizontal(hCam, 5), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamBinningVertical(hCam, 0), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(ReductionEffectTest, BinningShrinksAnImageThatDoesNotFitAnyMore)
{
    SetRoi(1920, 1200, 0, 0);
    ASSERT_EQ(SetCamBinningHorizontal(hCam, settings_.binningX = 4), 0u);
    settings_.width = 480;
    EXPECT_EQ(PayloadSize(), 480u * 1200u);
    ExpectPicture();
}

TEST_F(ReductionEffectTest, DecimationLeavesPixelsOut)
{
    for (const auto &[horizontal, vertical] : {std::pair{2u, 1u}, {1u, 3u}, {4u, 4u}}) {
        ASSERT_EQ(SetCamDecimationHorizontal(hCam, settings_.decimationX = horizontal), 0u);
        ASSERT_EQ(SetCamDecimationVertical(hCam, settings_.decimationY = vertical), 0u);
        ExpectPicture();
    }
    ASSERT_EQ(SetCamBinningHorizontal(hCam, settings_.binningX = 2), 0u);
    ExpectPicture(); // both together
    EXPECT_EQ(SetCamDecimationHorizontal(hCam, 5), CAM_API_STS_INVALID_PARAMETER);
}

/// A picture of Mono12 that is dark enough for 16 pixels in one, below what moves in it.
class ReducedImageTest : public EffectTest {
  protected:
    ReducedImageTest()
    {
        EXPECT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO12), 0u);
        settings_.pixelFormat = CAM_PIXEL_FORMAT_MONO12;
        EXPECT_EQ(SetCamExposureTime(hCam, settings_.exposure = 1000), 0u);
        SetRoi(640, 480, 0, 0);
        plain_ = ExpectPicture();
        SetRoi(160, 120, 0, 0);
    }
    static uint32_t Pixel(const Picture &picture, std::size_t x, std::size_t y)
    {
        const std::size_t at = 2 * (y * picture.info.uiWidth + x);
        return std::to_integer<uint32_t>(picture.bytes.at(at)) | std::to_integer<uint32_t>(picture.bytes.at(at + 1))
                                                                     << 8;
    }
    /// compare(x, y) in the part of the small image where nothing moves and no block id stands.
    template <class Compare>
    static void ForEachPixel(const Compare &compare)
    {
        for (std::size_t y = 104; y < 120; ++y)
            for (std::size_t x = 0; x < 160; ++x)
                compare(x, y);
    }

    Picture plain_;
};

TEST_F(ReducedImageTest, BinnedPixelsAreTheSumOfTheirs)
{
    for (const auto &[horizontal, vertical] : {std::pair{2u, 1u}, {1u, 4u}, {2u, 2u}, {4u, 4u}}) {
        ASSERT_EQ(SetCamBinningHorizontal(hCam, settings_.binningX = horizontal), 0u);
        ASSERT_EQ(SetCamBinningVertical(hCam, settings_.binningY = vertical), 0u);
        const Picture binned = ExpectPicture();
        ForEachPixel([&, columns = horizontal, lines = vertical](std::size_t x, std::size_t y) {
            uint32_t sum = 0;
            for (std::size_t line = 0; line < lines; ++line)
                for (std::size_t column = 0; column < columns; ++column)
                    sum += Pixel(plain_, x * columns + column, y * lines + line);
            ASSERT_NEAR(Pixel(binned, x, y), sum, columns * lines + 4) << "each of them has lost a fraction";
        });
    }
}

TEST_F(ReducedImageTest, DecimatedPixelsAreEverySoManyth)
{
    for (const auto &[horizontal, vertical] : {std::pair{2u, 1u}, {1u, 3u}, {4u, 4u}}) {
        ASSERT_EQ(SetCamDecimationHorizontal(hCam, settings_.decimationX = horizontal), 0u);
        ASSERT_EQ(SetCamDecimationVertical(hCam, settings_.decimationY = vertical), 0u);
        const Picture decimated = ExpectPicture();
        ForEachPixel([&, columns = horizontal, lines = vertical](std::size_t x, std::size_t y) {
            ASSERT_EQ(Pixel(decimated, x, y), Pixel(plain_, x * columns, y * lines));
        });
    }
}

} // namespace
} // namespace Orvi::Testing
