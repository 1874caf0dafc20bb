// Settings in a file, as an application saves and loads them.

#include "tests/effects/EffectTest.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

#include <algorithm>

namespace Orvi::Testing {
namespace {

class SettingsFileTest : public EffectTest {
  protected:
    /// What shows in a picture, and at a node that none shows.
    void Change()
    {
        ASSERT_EQ(SetCamRoi(hCam, 320, 200, 64, 32), 0u);
        ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_BAYERGB10), 0u);
        ASSERT_EQ(SetCamReverseY(hCam, true), 0u);
        ASSERT_EQ(SetCamExposureTime(hCam, 7000), 0u);
        ASSERT_EQ(SetCamGain(hCam, 2.5), 0u);
        ASSERT_EQ(SetCamBalanceRatio(hCam, CAM_BALANCE_RATIO_SELECTOR_BLUE, 1.5), 0u);
        ASSERT_EQ(SetCamLutValue(hCam, 500, 0), 0u);
        ASSERT_EQ(SetCamLutEnable(hCam, true), 0u);
        ASSERT_EQ(SetCamTimerDelay(hCam, 123), 0u);
    }

    const std::string file_ = (TempFolder::OfProcess() / "settings").string();
    const std::string edited_ = file_ + "-edited";
};

TEST_F(SettingsFileTest, LoadBringsBackThePicture)
{
    Change();
    const Picture before = Take();
    ASSERT_EQ(Cam_SaveParameter(hCam, file_.c_str()), 0u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, CAM_USER_SET_SELECTOR_DEFAULT), 0u);
    EXPECT_FALSE(Take().bytes == before.bytes);
    ASSERT_EQ(Cam_LoadParameter(hCam, file_.c_str(), false), 0u) << GenICamError();
    EXPECT_TRUE(Take().bytes == before.bytes);
    EXPECT_DOUBLE_EQ(FloatNode("TimerDelay"), 123);
}

TEST_F(SettingsFileTest, FileOfAnotherModelOrWithABrokenLineChangesNothing)
{
    Change();
    ASSERT_EQ(Cam_SaveParameter(hCam, file_.c_str()), 0u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, CAM_USER_SET_SELECTOR_DEFAULT), 0u);
    SetRoi(160, 120, 0, 0);
    const std::string good = ReadFile(file_);
    const std::size_t end = std::string("OrviParameters 1 Virtual Camera").size();
    const std::size_t last = static_cast<std::size_t>(std::count(good.begin(), good.end(), '\n'));
    const std::pair<std::string, std::string> broken[] = {
        {"OrviParameters 1 Another Camera" + good.substr(end), "line 1: "},
        {good + "Gain=loud\n", "line " + std::to_string(last + 1) + ": "},
        {good + "Gain=100\n", "line " + std::to_string(last + 1) + ": "}, // out of range
    };
    for (const auto &[text, line] : broken) {
        WriteFile(edited_, text);
        EXPECT_EQ(Cam_LoadParameter(hCam, edited_.c_str(), false), CAM_API_STS_GENICAM_ERR);
        EXPECT_EQ(Misc_SetLastGenICamError(1), 0u); // unlike a node's, a file's error is fetched by the application
        EXPECT_NE(GenICamError().find(edited_ + ", " + line), std::string::npos) << GenICamError();
        ExpectPicture(); // as from the factory
    }
}

TEST_F(SettingsFileTest, DefectsAreLoadedOnDemandAlone)
{
    ASSERT_EQ(SetCamDpcNumber(hCam, 1), 0u);
    ASSERT_EQ(Cam_SaveParameter(hCam, file_.c_str()), 0u);
    ASSERT_EQ(SetCamDpcNumber(hCam, 2), 0u);
    uint32_t number = 0;
    for (const bool isWanted : {false, true}) {
        ASSERT_EQ(Cam_LoadParameter(hCam, file_.c_str(), isWanted), 0u) << GenICamError();
        EXPECT_EQ(GetCamDpcNumber(hCam, &number), 0u);
        EXPECT_EQ(number, isWanted ? 1u : 2u);
    }
}

} // namespace
} // namespace Orvi::Testing
