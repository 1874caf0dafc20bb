// Opening a camera by its texts.

#include "tests/support/ApiTest.h"

namespace Orvi::Testing {

using Stub::Entry;

class CameraOpenFromInfoTest : public ApiTest {
  protected:
    CameraOpenFromInfoTest()
    {
        stub.cameras.clear();
        Attach("S0", "M", "left");
        Attach("S1", "M", "right");
        Attach("S2", "N", "left");
    }

    void Attach(std::string serial, std::string model, std::string name)
    {
        stub.cameras.push_back(
            {{{1, "Maker"}, {2, model}, {6, serial}, {7, name}, {3, ""}, {4, ""}, {5, ""}}, {{0x1012, 8}}});
    }

    CAM_API_STATUS Open(const char *serial, const char *model, const char *name)
    {
        return Cam_OpenFromInfo(serial, model, name, &hCam, nullptr, false, nullptr, CAM_ACCESS_MODE_CONTROL);
    }

    /// Index that was opened, or -1.
    int Opened(const char *serial, const char *model, const char *name)
    {
        hCam = 0;
        if (Open(serial, model, name) != 0)
            return -1;
        const int index = static_cast<int>(hCam) - 0x11;
        EXPECT_EQ(Cam_Close(hCam), 0u);
        return index;
    }

    CAM_HANDLE hCam = 0;
};

constexpr const char *s_enter = "Cam_OpenFromInfo, bUseGenICam=0, eAccessMode=1";

TEST_F(CameraOpenFromInfoTest, OpensTheFirstThatMatchesAllTexts)
{
    EXPECT_EQ(Opened("S1", nullptr, nullptr), 1);
    EXPECT_EQ(Opened(nullptr, "M", nullptr), 0);
    EXPECT_EQ(Opened(nullptr, "N", nullptr), 2);
    EXPECT_EQ(Opened(nullptr, nullptr, "left"), 0);
    EXPECT_EQ(Opened(nullptr, nullptr, "right"), 1);
    EXPECT_EQ(Opened(nullptr, "N", "left"), 2);
    EXPECT_EQ(Opened("S2", "N", "left"), 2);
    EXPECT_EQ(Opened("S2", "M", nullptr), -1);
}

TEST_F(CameraOpenFromInfoTest, ComparesWholeTextsWithCase)
{
    EXPECT_EQ(Opened("s1", nullptr, nullptr), -1);
    EXPECT_EQ(Opened("S", nullptr, nullptr), -1);
    EXPECT_EQ(Opened("S12", nullptr, nullptr), -1);
    EXPECT_EQ(Opened("", nullptr, nullptr), -1);
}

TEST_F(CameraOpenFromInfoTest, OfTwoThatShareASerialNumberTheFirstIsOpened)
{
    stub.cameras.clear();
    for (const char *serial : {"A", "B", "X", "C", "D", "X"})
        Attach(serial, "M", "");
    EXPECT_EQ(Opened("X", nullptr, nullptr), 2);
}

TEST_F(CameraOpenFromInfoTest, EmptyUserDefinedNameIsACriterion)
{
    Attach("S3", "M", "");
    EXPECT_EQ(Opened(nullptr, nullptr, ""), 3);
}

TEST_F(CameraOpenFromInfoTest, NameThatFillsItsFieldIsComparedWhole)
{
    const std::string name(64, 'n');
    Attach("S3", "M", name);
    EXPECT_EQ(Opened(nullptr, nullptr, name.c_str()), 3);
    EXPECT_EQ(Opened(nullptr, nullptr, (name + "n").c_str()), -1);
    EXPECT_EQ(Opened(nullptr, nullptr, name.substr(1).c_str()), -1);
}

TEST_F(CameraOpenFromInfoTest, NumbersCamerasAnewFirst)
{
    EXPECT_EQ(Open("S2", nullptr, nullptr), 0u) << "the enumeration before knew one camera";
    EXPECT_EQ(hCam, 0x13u);
}

TEST_F(CameraOpenFromInfoTest, SkipsCamerasThatDoNotAnswer)
{
    stub.on.Cam_GetInformation = [answer = stub.on.Cam_GetInformation](CAM_HANDLE h, uint32_t number, uint32_t item,
                                                                       void *buffer, uint32_t *size) -> CAM_API_STATUS {
        return number == 1 ? CAM_API_STS_CAMERA_NOT_RESPONDING : answer(h, number, item, buffer, size);
    };
    EXPECT_EQ(Opened(nullptr, nullptr, "left"), 2);
}

TEST_F(CameraOpenFromInfoTest, LinesOfASuccess)
{
    EXPECT_EQ(Open("S0", nullptr, nullptr), 0u);
    const Lines log = TakeLog();
    EXPECT_EQ(log.front(), EnterLine(s_enter));
    EXPECT_EQ(log[1], EnterLine("Sys_GetNumOfCameras"));
    EXPECT_EQ(log.back(), "INFO ,EXIT: Cam_OpenFromInfo, *phCam=0x11");
    EXPECT_THAT(log, ::testing::Contains(EnterLine("Cam_Open, uiCamIdx=0, bUseGenICam=0, eAccessMode=1")));
}

TEST_F(CameraOpenFromInfoTest, PassesTheOtherArgumentsToTheOpen)
{
    int signal = 0, xml = 0;
    stub.NamePointer(&signal, "signal");
    stub.NamePointer(&xml, "xml");
    EXPECT_EQ(Cam_OpenFromInfo("S1", nullptr, nullptr, &hCam, &signal, true, &xml, CAM_ACCESS_MODE_READ), 0u);
    EXPECT_THAT(TakeCalls(), ::testing::Contains("Cam_Open(2, signal, ptr, true, xml)"));
}

TEST_F(CameraOpenFromInfoTest, RefusesThreeNullTextsBeforeAnythingElse)
{
    EXPECT_EQ(Open(nullptr, nullptr, nullptr), 13u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine(s_enter), ExitLine(13, "Cam_OpenFromInfo")}));
    EXPECT_EQ(TakeCalls(), Lines{});
    Terminate();
    EXPECT_EQ(Open(nullptr, nullptr, nullptr), 13u) << "also while not initialised";
}

TEST_F(CameraOpenFromInfoTest, NotInitialisedIsTheEnumerationsAnswer)
{
    Terminate();
    EXPECT_EQ(Open("S0", nullptr, nullptr), 1u);
    const Lines log = TakeLog();
    EXPECT_EQ(log.front(), EnterLine(s_enter));
    EXPECT_EQ(log.back(), ExitLine(1, "Cam_OpenFromInfo"));
}

TEST_F(CameraOpenFromInfoTest, EnumerationsFailureIsReturnedUnchanged)
{
    stub.Script(Entry::Sys_GetNumOfCameras, {CAM_API_STS_TIMEOUT});
    EXPECT_EQ(Open("S0", nullptr, nullptr), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(TakeLog().back(), ExitLine(CAM_API_STS_TIMEOUT, "Cam_OpenFromInfo"));
}

TEST_F(CameraOpenFromInfoTest, NoCameraAndNoMatch)
{
    EXPECT_EQ(Open("none", nullptr, nullptr), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_OpenFromInfo"));
    stub.cameras.clear();
    EXPECT_EQ(Open("S0", nullptr, nullptr), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_OpenFromInfo"));
}

TEST_F(CameraOpenFromInfoTest, FailureOfTheOpenIsReturnedWithoutTryingTheNext)
{
    stub.Script(Entry::Cam_Open, {CAM_API_STS_XML_LOAD_ERR});
    EXPECT_EQ(Open(nullptr, "M", nullptr), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(stub.CountOf(Entry::Cam_Open), 1u);
    EXPECT_EQ(TakeLog().back(), ExitLine(CAM_API_STS_XML_LOAD_ERR, "Cam_OpenFromInfo"));
}

TEST_F(CameraOpenFromInfoTest, OpenCameraIsReportedAsSuch)
{
    ASSERT_EQ(Open("S0", nullptr, nullptr), 0u);
    hCam = 0;
    EXPECT_EQ(Open("S0", nullptr, nullptr), 4u);
    EXPECT_EQ(hCam, 0x11u);
    EXPECT_EQ(TakeLog().back(), ExitLine(4, "Cam_OpenFromInfo"));
}

TEST_F(CameraOpenFromInfoTest, NullHandlePointerIsRefused)
{
    EXPECT_EQ(Cam_OpenFromInfo("S0", nullptr, nullptr, nullptr, nullptr, false, nullptr, CAM_ACCESS_MODE_CONTROL), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_OpenFromInfo"));
}

} // namespace Orvi::Testing
