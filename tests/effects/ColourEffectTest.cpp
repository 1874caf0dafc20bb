// Colours: white balance, colour matrix, hue, saturation.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

class ColourEffectTest : public EffectTest {
  protected:
    ColourEffectTest() { UseFormat(CAM_PIXEL_FORMAT_RGB8); }
    void UseFormat(CAM_PIXEL_FORMAT format)
    {
        EXPECT_EQ(SetCamPixelFormat(hCam, format), 0u);
        settings_.pixelFormat = format;
    }
    static int32_t Spread(const Vcam::Signal &signal)
    {
        return std::max({signal.red, signal.green, signal.blue}) - std::min({signal.red, signal.green, signal.blue});
    }
};

TEST_F(ColourEffectTest, BalanceRatiosScaleRedAndBlue)
{
    const Vcam::Signal plain = At(20, 100);
    ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, 1.5), 0u);
    ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, 0.5), 0u);
    settings_.redRatio = 1500;
    settings_.blueRatio = 500;
    EXPECT_NEAR(At(20, 100).red, plain.red * 3 / 2, 2);
    EXPECT_EQ(At(20, 100).green, plain.green);
    EXPECT_NEAR(At(20, 100).blue, plain.blue / 2, 2);
    for (const CAM_PIXEL_FORMAT format :
         {CAM_PIXEL_FORMAT_RGB8, CAM_PIXEL_FORMAT_BAYERGB12, CAM_PIXEL_FORMAT_YUV422_8_UYVY, CAM_PIXEL_FORMAT_MONO8}) {
        UseFormat(format);
        ExpectPicture(); // of a grey picture it changes nothing
    }
    double red = 0, blue = 0;
    EXPECT_EQ(GetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, &red), 0u);
    EXPECT_EQ(GetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, &blue), 0u);
    EXPECT_DOUBLE_EQ(red, 1.5);
    EXPECT_DOUBLE_EQ(blue, 0.5);
    EXPECT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_TYPE(3), 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_RED, 4.5), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
}

TEST_F(ColourEffectTest, EachElementOfTheMatrixMixesItsColours)
{
    // eType to row and column of the matrix, in the order red, green, blue
    constexpr std::size_t elements[] = {1, 2, 3, 5, 6, 7};
    for (uint32_t type = 0; type < 6; ++type) {
        const auto eType = CAM_COLOR_CORRECTION_MATRIX_TYPE(type);
        ASSERT_EQ(SetCamColorCorrectionMatrix(hCam, eType, -0.5), 0u);
        settings_.matrix[elements[type]] = -500;
        ExpectPicture();
        double value = 0;
        ASSERT_EQ(GetCamColorCorrectionMatrix(hCam, eType, &value), 0u);
        EXPECT_DOUBLE_EQ(value, -0.5);
        ASSERT_EQ(SetCamColorCorrectionMatrix(hCam, eType, 0.001 * type), 0u);
        settings_.matrix[elements[type]] = static_cast<int32_t>(type);
    }
    ExpectPicture(); // all of them together
    EXPECT_EQ(SetCamColorCorrectionMatrix(hCam, CAM_COLOR_CORRECTION_MATRIX_RG, 2.1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamColorCorrectionMatrix(hCam, CAM_COLOR_CORRECTION_MATRIX_TYPE(6), 1), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
}

TEST_F(ColourEffectTest, HueTurnsColours)
{
    const Vcam::Signal plain = At(20, 100);
    ASSERT_EQ(SetCamHue(hCam, 120), 0u);
    settings_.hue = 1200;
    ExpectPicture();
    EXPECT_NEAR(At(20, 100).green, plain.red, 3) << "a third of a turn: red becomes green";
    ASSERT_EQ(SetCamHue(hCam, -180), 0u);
    settings_.hue = -1800;
    ExpectPicture();
    double hue = 0;
    EXPECT_EQ(GetCamHue(hCam, &hue), 0u);
    EXPECT_DOUBLE_EQ(hue, -180) << "values below zero have their sign";
    EXPECT_EQ(SetCamHue(hCam, 181), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(ColourEffectTest, SaturationStretchesColours)
{
    const int32_t plain = Spread(At(20, 100));
    ASSERT_EQ(SetCamSaturation(hCam, 2), 0u);
    settings_.saturation = 200;
    ExpectPicture();
    EXPECT_GT(Spread(At(20, 100)), plain);
    ASSERT_EQ(SetCamSaturation(hCam, 0), 0u);
    settings_.saturation = 0;
    ExpectPicture();
    EXPECT_LE(Spread(At(20, 100)), 1) << "grey";
    EXPECT_EQ(SetCamSaturation(hCam, 4.5), CAM_API_STS_INVALID_PARAMETER);
}

} // namespace
} // namespace Orvi::Testing
