// Ending the library.

#include "tests/system/SystemTest.h"

#include "tests/support/Registry.h"

#include <sys/stat.h>

namespace Orvi::Testing {

class TerminateTest : public SystemTest {
  protected:
    TerminateTest() { StartLog(); }

    void Initialize()
    {
        ASSERT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        TakeLog();
        TakeCalls();
    }

    const Lines lines{EnterLine("Sys_Terminate"), ExitLine(0, "Sys_Terminate")};
};

TEST_F(TerminateTest, EndsTheTransport)
{
    Initialize();
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(TakeLog(), lines);
    EXPECT_EQ(TakeCalls(), Lines{"Sys_Terminate()"});
    EXPECT_FALSE(GetInitFlg());
    EXPECT_FALSE(IsTransportLoaded());
}

TEST_F(TerminateTest, SucceedsWithoutAStart)
{
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(TakeLog(), (Lines{lines[0], lines[1], lines[0], lines[1]}));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(TerminateTest, FailureOfTheTransportIsOnlyDiagnosed)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        Initialize();
        stub.Script(Entry::Sys_Terminate, {status});
        EXPECT_EQ(Sys_Terminate(), 0u);
        EXPECT_EQ(TakeLog(), lines);
        EXPECT_EQ(TakeDiagnostics(),
                  Lines{"(Sys_Terminate) _Uc_Sys_Terminate with Status " + TransportName(status) + "\n"});
        EXPECT_FALSE(GetInitFlg());
        EXPECT_FALSE(IsTransportLoaded());
    }
}

TEST_F(TerminateTest, ClosesNoHandles)
{
    Initialize();
    uint32_t count;
    CAM_HANDLE hCam;
    ASSERT_EQ(Sys_GetNumOfCameras(&count), 0u);
    ASSERT_EQ(Cam_Open(0, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
    TakeCalls();
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(TakeCalls(), Lines{"Sys_Terminate()"});
    EXPECT_EQ(CountCameras(hCam), 1u);
    ClearRegistry();
}

TEST_F(TerminateTest, ExceptionLeavesTheLibraryUp)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        Initialize();
        const std::filesystem::path file = CacheFolder() / "camera.bin";
        WriteFile(file, "");
        chmod(file.c_str(), 0600);
        stub.ThrowNext(Entry::Sys_Terminate, thrown);
        EXPECT_EQ(Sys_Terminate(), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog(), (Lines{lines[0], ExitLine(0xFFFFFFFF, "Sys_Terminate")}));
        EXPECT_TRUE(GetInitFlg());
        EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::all) << "shared all the same";
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 2u);
        TakeCalls();
        TakeLog();
        EXPECT_EQ(Sys_Terminate(), 0u);
        EXPECT_EQ(TakeCalls(), Lines{"Sys_Terminate()"});
        EXPECT_EQ(TakeLog(), lines);
        EXPECT_FALSE(GetInitFlg());
    }
}

TEST_F(TerminateTest, LeavesTheApplicationsLogUp)
{
    Configure("OrviCamApi,MEMORY,4096,DEBUG,PATH=@\n"); // the log is up already, so the file starts none
    Initialize();
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_TRUE(g_bUniLogInit);
    EXPECT_EQ(TakeLog(), lines);
    EXPECT_TRUE(std::filesystem::is_empty(Logs()));
}

} // namespace Orvi::Testing
