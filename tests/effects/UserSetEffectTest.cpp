// User sets, and commands that report done late or never.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

constexpr auto set1 = CAM_USER_SET_SELECTOR_USER_SET1, set2 = CAM_USER_SET_SELECTOR_USER_SET2,
               set15 = CAM_USER_SET_SELECTOR_USER_SET15, factory = CAM_USER_SET_SELECTOR_DEFAULT;

class UserSetEffectTest : public EffectTest {
  protected:
    void Brighten(double gain)
    {
        ASSERT_EQ(SetCamGain(hCam, gain), 0u);
        settings_.gain = static_cast<uint32_t>(gain * 100);
    }
};

TEST_F(UserSetEffectTest, LoadBringsBackThePicture)
{
    Brighten(3);
    ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_BAYERRG12), 0u);
    settings_.pixelFormat = CAM_PIXEL_FORMAT_BAYERRG12;
    ASSERT_EQ(SetCamLutValue(hCam, 5, 900), 0u);
    ASSERT_EQ(ExecuteCamUserSetSave(hCam, set1), 0u);
    EXPECT_TRUE(BoolNode("UserSetDone"));
    const Vcam::PictureSettings saved = settings_;
    Brighten(6);
    ASSERT_EQ(ExecuteCamUserSetSave(hCam, set15), 0u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, factory), 0u);
    uint32_t width = 0, entry = 0;
    EXPECT_EQ(GetCamWidth(hCam, &width), 0u);
    EXPECT_EQ(width, 1920u);
    EXPECT_EQ(GetCamLutValue(hCam, 5, &entry), 0u);
    EXPECT_EQ(entry, 5u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, set1), 0u);
    settings_ = saved;
    ExpectPicture();
    EXPECT_EQ(GetCamLutValue(hCam, 5, &entry), 0u);
    EXPECT_EQ(entry, 900u);
    ASSERT_EQ(ExecuteCamUserSetLoad(hCam, set15), 0u);
    settings_.gain = 600;
    ExpectPicture();
}

TEST_F(UserSetEffectTest, FactorySetIsNotSaved)
{
    EXPECT_EQ(ExecuteCamUserSetSave(hCam, factory), CAM_API_STS_GENICAM_ERR);
    EXPECT_NE(GenICamError().find("UserSetSave"), std::string::npos) << GenICamError();
    EXPECT_EQ(EnumNode("UserSetSelector"), "Default");
    EXPECT_EQ(ExecuteCamUserSetLoad(hCam, CAM_USER_SET_SELECTOR_TYPE(16)), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(UserSetEffectTest, IsNotLoadedWhileStreaming)
{
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(ExecuteCamUserSetLoad(hCam, set1), CAM_API_STS_GENICAM_ERR);
    channel.Stop();
}

TEST_F(UserSetEffectTest, DefaultSetIsLoadedAtPowerUp)
{
    Brighten(3);
    ASSERT_EQ(ExecuteCamUserSetSaveAndSetDefault(hCam, set2), 0u);
    EXPECT_EQ(EnumNode("UserSetDefault"), "UserSet2");
    Brighten(6);
    WriteWord(hCam, Virtual::replugAfter, 1);
    WriteWord(hCam, Virtual::unplug, 1);
    const auto gain = [this] {
        // Until the camera is back the handle is that of a camera which is gone.
        EXPECT_TRUE(Eventually([] {
            uint32_t count = 0;
            return Sys_GetNumOfCameras(&count) == 0 && count == 2;
        }));
        const CAM_HANDLE hAgain = Open();
        double value = -1;
        EXPECT_EQ(GetCamGain(hAgain, &value), 0u);
        return std::pair(hAgain, value);
    };
    EXPECT_TRUE(Eventually([this] {
        uint32_t word = 0;
        return Cam_ReadReg(hCam, Virtual::unthrottled, 1, &word) != 0;
    }));
    Cam_Close(hCam);
    const auto [hAgain, value] = gain();
    EXPECT_DOUBLE_EQ(value, 3);
    // The factory's set as the default one: the camera is as from the factory at once.
    EXPECT_EQ(ExecuteCamUserSetSaveAndSetDefault(hAgain, factory), 0u);
    double now = -1;
    EXPECT_EQ(GetCamGain(hAgain, &now), 0u);
    EXPECT_DOUBLE_EQ(now, 0);
    int64_t set = -1;
    EXPECT_EQ(Nd_GetEnumIntValue(hAgain, Node(hAgain, "UserSetDefault"), &set, false, false), 0u);
    EXPECT_EQ(set, 0);
}

TEST_F(UserSetEffectTest, LateCommandIsWaitedFor)
{
    WriteWord(hCam, Virtual::commandDelay, 200);
    const uint64_t before = DeviceTime();
    ASSERT_EQ(ExecuteCamUserSetSave(hCam, set1), 0u);
    EXPECT_GE(DeviceTime() - before, 200'000'000u);
    EXPECT_TRUE(BoolNode("UserSetDone"));
}

TEST_F(UserSetEffectTest, CommandThatIsNeverDoneEndsAfterItsPolls)
{
    WriteWord(hCam, Virtual::commandDelay, Virtual::never);
    EXPECT_EQ(ExecuteCamUserSetLoad(hCam, set1), 0u) << "running out of polls is no failure";
    EXPECT_FALSE(BoolNode("UserSetDone"));
    EXPECT_EQ(ExecuteCamUserSetSave(hCam, set1), CAM_API_STS_GENICAM_ERR);
    EXPECT_NE(GenICamError().find("busy"), std::string::npos) << GenICamError();
    EXPECT_EQ(ExecuteCamSoftwareTrigger(hCam), 0u) << "another command is not concerned";
    WriteWord(hCam, Virtual::commandDelay, 0);
    EXPECT_TRUE(BoolNode("UserSetDone"));
    EXPECT_EQ(ExecuteCamUserSetLoad(hCam, set1), 0u);
}

} // namespace
} // namespace Orvi::Testing
