// Port, pipes, heartbeat and parameter files beyond the frame.

#include "tests/support/ApiTest.h"

#include "tests/stub/Variant.h"
#include "tests/support/TempFolder.h"

#include <cstdlib>

namespace Orvi::Testing {

using Stub::Entry;

class CameraControlTest : public ApiTest {
  protected:
    CameraControlTest()
    {
        AddCamera(CAM_TYPE_U3V, hCamera);
        AddCamera(CAM_TYPE_GEV, hCameraGev);
    }
};

TEST_F(CameraControlTest, ResetPortKeepsTheRecord)
{
    EXPECT_EQ(Cam_ResetPort(hCamera), 0u);
    EXPECT_EQ(TakeCalls(), (Lines{"Cam_Reset(0x11)", "Cam_Close(0x11)"}));
    CAM_TYPE type;
    EXPECT_EQ(GetCamTypeFromCamHandle(hCamera, &type), 0u);
    EXPECT_EQ(type, CAM_TYPE_U3V);
}

TEST_F(CameraControlTest, FailedResetDoesNotClose)
{
    stub.Script(Entry::Cam_Reset, {0x13});
    EXPECT_EQ(Cam_ResetPort(hCamera), 0x13u);
    EXPECT_EQ(TakeCalls(), Lines{"Cam_Reset(0x11)"});
}

TEST_F(CameraControlTest, FailureOfTheCloseAfterAResetIsTranslated)
{
    stub.Script(Entry::Cam_Close, {0xB000});
    EXPECT_EQ(Cam_ResetPort(hCamera), 0x808u);
    EXPECT_EQ(TakeLog().back(), ExitLine(0x808, "Cam_ResetPort"));
    EXPECT_EQ(TakeDiagnostics(), Lines{"(_Uc_Cam_Reset) Status U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE\n"});
}

TEST_F(CameraControlTest, ThereIsNoHeartbeat)
{
    bool enable = true;
    uint32_t timeout = 77;
    EXPECT_EQ(Cam_GetHeartbeat(hCamera, &enable, &timeout), 17u);
    EXPECT_TRUE(enable);
    EXPECT_EQ(timeout, 77u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetHeartbeat, hCam=0x11"), ExitLine(17, "Cam_GetHeartbeat")}));
    EXPECT_EQ(Cam_SetHeartbeat(hCamera, true, 3000), 17u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_SetHeartbeat, hCam=0x11, bEnable=1, uiHbTimeout=3000"),
                                ExitLine(17, "Cam_SetHeartbeat")}));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(CameraControlTest, HeartbeatOfAForeignCamera)
{
    for (const CAM_HANDLE handle : {hForeign, hCameraGev, CAM_HANDLE{0}}) {
        EXPECT_EQ(Cam_GetHeartbeat(handle, nullptr, nullptr), 7u);
        EXPECT_EQ(TakeLog().back(), ExitLine(7, "Cam_GetHeartbeat"));
        EXPECT_EQ(Cam_SetHeartbeat(handle, false, 0), 7u);
        EXPECT_EQ(TakeLog().back(), ExitLine(7, "Cam_SetHeartbeat"));
    }
    Terminate();
    EXPECT_EQ(Cam_GetHeartbeat(0, nullptr, nullptr), 1u);
    EXPECT_EQ(Cam_SetHeartbeat(0, false, 0), 1u);
}

/// The library on a transport that lacks some entries.
class CameraControlLackingTest : public ::testing::Test {
  protected:
    static void Load(std::initializer_list<Entry> missing)
    {
        Stub::MakeSdkWithout(missing, TempFolder::OfProcess() / "lacking");
        setenv("HOME", TempFolder::OfProcess().c_str(), 1);
        setenv("ORVICAMSDK", (TempFolder::OfProcess() / "lacking").c_str(), 1);
        Stub::Transport::Instance().Reset();
        ClearRegistry();
        if (Sys_Initialize(SYS_INIT_U3V) != 0)
            std::abort();
        AddCamera(CAM_TYPE_U3V, hCamera);
    }
    ~CameraControlLackingTest() override
    {
        Sys_Terminate();
        ClearRegistry();
    }
};

TEST_F(CameraControlLackingTest, OptionalEntriesThatAreMissingAnswerUnsuccessful)
{
    Load({Entry::Cam_SaveParameter, Entry::Cam_LoadParameter, Entry::Strm_GetLostCount});
    AddStream(CAM_TYPE_U3V, hCamera, hStream);
    uint64_t count = 9;
    EXPECT_EQ(Cam_SaveParameter(hCamera, "a"), 0xFFFFFFFFu);
    EXPECT_EQ(Cam_LoadParameter(hCamera, "a", false), 0xFFFFFFFFu);
    EXPECT_EQ(Strm_GetLostCount(hStream, &count), 0xFFFFFFFFu);
    EXPECT_EQ(count, 9u);
    EXPECT_EQ(Cam_AbortPipe(hCamera, 0), 0u) << "the others are there";
}

// The pipe functions look for the reset entry instead of their own: the fault is what existing programs see.
using CameraControlDeathTest = CameraControlLackingTest;

TEST_F(CameraControlDeathTest, PipeFunctionsFaultOnATransportThatLacksThem)
{
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto abortPipe = [] {
        Load({Entry::Cam_AbortPipe});
        Cam_AbortPipe(hCamera, 0);
        std::_Exit(0);
    };
    const auto resetPipe = [] {
        Load({Entry::Cam_ResetPipe});
        Cam_ResetPipe(hCamera, 0);
        std::_Exit(0);
    };
    const auto faulted = [](int status) {
        // A sanitizer turns the fault into an exit of its own.
        return WIFSIGNALED(status) ? WTERMSIG(status) == SIGSEGV : WEXITSTATUS(status) != 0;
    };
    EXPECT_EXIT(abortPipe(), faulted, "");
    EXPECT_EXIT(resetPipe(), faulted, "");
}

} // namespace Orvi::Testing
