// Sys_GetNumOfCameras

#include "tests/support/ApiTest.h"

#include "foundation/HandleRegistry.h"
#include "system/UNI_Sys.h"

namespace Orvi::Testing {

using Stub::Entry;

class CameraCountTest : public ApiTest {
  protected:
    /// Makes the transport report so many cameras.
    void Attach(uint32_t attached, CAM_API_STATUS status = 0)
    {
        stub.on.Sys_GetNumOfCameras = [attached, status](uint32_t *answer) {
            EXPECT_EQ(*answer, 0u);
            *answer = attached;
            return status;
        };
    }

    static void ExpectSlots(uint32_t filled)
    {
        for (uint32_t index = 0; index < CAMERA_INDEX_MAX; ++index) {
            EXPECT_EQ(g_camInfo[index].eCamType, index < filled ? CAM_TYPE_U3V : CAM_TYPE_NONE) << index;
            EXPECT_EQ(g_camInfo[index].iDevIdx, index < filled ? static_cast<int32_t>(index) : -1) << index;
        }
    }

    uint32_t count = 99;
    const std::string enter = EnterLine("Sys_GetNumOfCameras");
};

TEST_F(CameraCountTest, FillsTheSlots)
{
    for (const uint32_t attached : {64u, 3u, 0u, 1u}) {
        Attach(attached);
        count = 99;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
        EXPECT_EQ(count, attached);
        ExpectSlots(attached);
        EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0, "Sys_GetNumOfCameras, *puiNum=" + std::to_string(attached))}));
        EXPECT_EQ(TakeCalls(), Lines{"Sys_GetNumOfCameras(ptr)"});
        EXPECT_EQ(TakeDiagnostics(), Lines{});
    }
}

TEST_F(CameraCountTest, MoreThanSixtyFourAreRefused)
{
    for (const uint32_t attached : {65u, 1000u, 0xFFFFFFFFu}) {
        Attach(attached);
        count = 99;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), 0xFFFFFFFFu);
        EXPECT_EQ(count, 0u);
        ExpectSlots(0);
        EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0xFFFFFFFF, "Sys_GetNumOfCameras")}));
    }
}

TEST_F(CameraCountTest, TranslatesEveryStatus)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        for (const uint32_t attached : {2u, 65u}) {
            Attach(attached, status);
            count = 99;
            EXPECT_EQ(Sys_GetNumOfCameras(&count), Translated(status));
            EXPECT_EQ(count, 0u);
            ExpectSlots(0);
            EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(Translated(status), "Sys_GetNumOfCameras")}));
            EXPECT_EQ(TakeDiagnostics(), Lines{"(UC_Sys_GetNumOfCameras) _Uc_Sys_GetNumOfCameras with Status " +
                                               TransportName(Translated(status)) + "\n"})
                << "the diagnostic names the translated status";
        }
    }
}

TEST_F(CameraCountTest, LetsNoExceptionThrough)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        SetCameraSlot(0, CAM_TYPE_U3V, 0);
        stub.ThrowNext(Entry::Sys_GetNumOfCameras, thrown);
        count = 99;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), 0xFFFFFFFFu);
        EXPECT_EQ(count, 0u);
        ExpectSlots(0);
        EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0xFFFFFFFF, "Sys_GetNumOfCameras")}));
    }
}

TEST_F(CameraCountTest, NotInitialisedIsLoggedAsSuccess)
{
    Terminate();
    SetCameraSlot(0, CAM_TYPE_U3V, 0);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 1u);
    EXPECT_EQ(Sys_GetNumOfCameras(nullptr), 1u);
    EXPECT_EQ(count, 99u);
    EXPECT_EQ(g_camInfo[0].eCamType, CAM_TYPE_U3V) << "nothing was touched";
    const std::string exit = ExitLine(0, "Sys_GetNumOfCameras");
    EXPECT_EQ(TakeLog(), (Lines{enter, exit, enter, exit}));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(CameraCountTest, NullOutputHasNoExitLine)
{
    EXPECT_EQ(Sys_GetNumOfCameras(nullptr), 13u);
    EXPECT_EQ(TakeLog(), Lines{enter});
    EXPECT_EQ(TakeCalls(), Lines{});
    ExpectSlots(1);
}

TEST_F(CameraCountTest, SlotsKeepWhatOpeningNoted)
{
    g_camInfo[0].bUseGenICam = true;
    g_camInfo[63].bUseGenICam = true;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
    EXPECT_TRUE(g_camInfo[0].bUseGenICam);
    EXPECT_TRUE(g_camInfo[63].bUseGenICam);
}

TEST_F(CameraCountTest, NoTransportInUseMeansNoCamera)
{
    Terminate();
    s_bInit = true;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0, "Sys_GetNumOfCameras, *puiNum=0")}));
}

} // namespace Orvi::Testing
