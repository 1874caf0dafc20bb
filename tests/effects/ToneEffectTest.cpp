// Brightness, contrast, and single pixels.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

class ToneEffectTest : public EffectTest {};

TEST_F(ToneEffectTest, ExposureTimeBrightensInProportion)
{
    ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure = 4000), 0u);
    ExpectPicture();
    const int32_t before = At(20, 100).green;
    ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure = 12000), 0u);
    ExpectPicture();
    EXPECT_NEAR(At(20, 100).green, 3 * before, 3);
    double min = 0, max = 0;
    ASSERT_EQ(GetCamExposureTimeMinMax(hCam, &min, &max), 0u);
    EXPECT_DOUBLE_EQ(min, 20) << "in microseconds";
    EXPECT_DOUBLE_EQ(max, 16000000);
    for (const double refused : {min - 1, max + 1})
        EXPECT_EQ(SetCamExposureTime(hCam, refused), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture(); // a refused value changes nothing
}

TEST_F(ToneEffectTest, GainBrightens)
{
    ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure = 4000), 0u);
    const int32_t before = At(20, 100).green;
    ASSERT_EQ(SetCamGain(hCam, 6.02), 0u);
    settings_.gain = 602;
    ExpectPicture();
    EXPECT_NEAR(At(20, 100).green, 2 * before, 3) << "6 dB are twice the signal";
    double min = 0, max = 0;
    ASSERT_EQ(GetCamGainMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(SetCamGain(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(SetCamGain(hCam, min - 1), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
    ASSERT_EQ(SetCamGain(hCam, max), 0u);
    settings_.gain = 2400;
    ExpectPicture();
}

TEST_F(ToneEffectTest, BlackLevelLiftsTheSignal)
{
    const int32_t before = At(20, 100).green;
    ASSERT_EQ(SetCamBlackLevel(hCam, 10), 0u);
    settings_.blackLevel = 160;
    ExpectPicture();
    EXPECT_EQ(At(20, 100).green, before + 16 * 160);
    double min = 0, max = 0;
    ASSERT_EQ(GetCamBlackLevelMinMax(hCam, &min, &max), 0u);
    EXPECT_EQ(SetCamBlackLevel(hCam, max + 1), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
}

TEST_F(ToneEffectTest, GammaBendsTheSignal)
{
    const int32_t before = At(20, 100).green;
    ASSERT_EQ(SetCamGamma(hCam, 0.5), 0u);
    settings_.gamma = 50;
    ExpectPicture();
    EXPECT_GT(At(20, 100).green, before);
    ASSERT_EQ(SetCamGamma(hCam, 2), 0u);
    settings_.gamma = 200;
    ExpectPicture();
    EXPECT_LT(At(20, 100).green, before);
    EXPECT_EQ(SetCamGamma(hCam, 4.5), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
}

TEST_F(ToneEffectTest, SharpnessRaisesEdges)
{
    const int32_t before = At(64, 100).green - At(63, 100).green; // an edge of the chessboard
    for (const uint32_t sharpness : {1u, 8u}) {
        ASSERT_EQ(SetCamSharpness(hCam, settings_.sharpness = sharpness), 0u);
        ExpectPicture();
        EXPECT_GT(std::abs(At(64, 100).green - At(63, 100).green), std::abs(before));
    }
    EXPECT_EQ(SetCamSharpness(hCam, 9), CAM_API_STS_INVALID_PARAMETER);
    ExpectPicture();
}

TEST_F(ToneEffectTest, LookUpTableReplacesTheSignal)
{
    const int32_t before = At(20, 100).green;
    std::vector<uint16_t> inverse(1024);
    for (uint32_t i = 0; i < 1024; ++i) {
        inverse[i] = static_cast<uint16_t>(1023 - i);
        ASSERT_EQ(SetCamLutValue(hCam, i, 1023 - i), 0u);
    }
    ExpectPicture(); // it is still off
    ASSERT_EQ(SetCamLutEnable(hCam, true), 0u);
    settings_.lut = inverse;
    ExpectPicture();
    EXPECT_NEAR(At(20, 100).green, Vcam::s_white - before, 64);
    uint32_t value = 0;
    ASSERT_EQ(GetCamLutValue(hCam, 1000, &value), 0u);
    EXPECT_EQ(value, 23u);
    EXPECT_EQ(SetCamLutValue(hCam, 1024, 0), CAM_API_STS_INVALID_PARAMETER) << "no such entry";
    EXPECT_EQ(SetCamLutValue(hCam, 0, 1024), CAM_API_STS_INVALID_PARAMETER) << "more than ten bits";
    ExpectPicture();
    ASSERT_EQ(SetCamLutEnable(hCam, false), 0u);
    settings_.lut.clear();
    ExpectPicture();
}

/// A window with the sensor's first defective pixel, a white one.
class DefectEffectTest : public EffectTest {
  protected:
    DefectEffectTest()
    {
        SetRoi(160, 120, 192, 200);
        for (const Vcam::Defect &defect : Vcam::DefectsOf(1920, 1200))
            factory_.push_back(defect);
    }
    std::byte Pixel(const Picture &picture, const Vcam::SensorPixel &at) const
    {
        return picture.bytes[(at.y - settings_.offsetY) * 160 + at.x - settings_.offsetX];
    }

    std::vector<Vcam::SensorPixel> factory_;
};

TEST_F(DefectEffectTest, CorrectionHidesThePixelsOfTheList)
{
    EXPECT_EQ(Pixel(ExpectPicture(), factory_[0]), std::byte{0xFF});
    ASSERT_EQ(SetCamDpcEnable(hCam, true), 0u);
    settings_.corrected = factory_;
    EXPECT_NE(Pixel(ExpectPicture(), factory_[0]), std::byte{0xFF});
    uint32_t number = 0, x = 0, y = 0;
    ASSERT_EQ(GetCamDpcNumber(hCam, &number), 0u);
    ASSERT_EQ(number, factory_.size());
    for (uint32_t i = 0; i < number; ++i) {
        ASSERT_EQ(GetCamDpcPosition(hCam, i, &x, &y), 0u);
        EXPECT_EQ((Vcam::SensorPixel{x, y}), factory_[i]);
    }
    ASSERT_EQ(SetCamDpcNumber(hCam, 0), 0u);
    settings_.corrected.clear();
    EXPECT_EQ(Pixel(ExpectPicture(), factory_[0]), std::byte{0xFF}) << "the list is empty";
    EXPECT_EQ(SetCamDpcNumber(hCam, 33), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(DefectEffectTest, PositionIsWrittenToTheSelectedEntry)
{
    // Writing a position moves LUTIndex and leaves DPCIndex, which says what entry is written.
    SetInt(hCam, "DPCIndex", 0);
    ASSERT_EQ(SetCamDpcPosition(hCam, 7, 200, 210), 0u);
    EXPECT_EQ(GetInt(hCam, "DPCIndex"), 0);
    EXPECT_EQ(GetInt(hCam, "LUTIndex"), 7);
    ASSERT_EQ(SetCamDpcEnable(hCam, true), 0u);
    settings_.corrected = factory_;
    settings_.corrected[0] = {200, 210};
    ExpectPicture();
    EXPECT_EQ(GetInt(hCam, "DPCEntryX"), 200);
}

} // namespace
} // namespace Orvi::Testing
