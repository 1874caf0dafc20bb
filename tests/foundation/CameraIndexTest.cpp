// The slots that enumeration fills, and who empties them.

#include "tests/support/ApiTest.h"

#include "foundation/HandleRegistry.h"

namespace Orvi::Testing {

class CameraIndexTest : public ApiTest {
  protected:
    static void ExpectAllEmpty()
    {
        for (uint32_t index = 0; index < CAMERA_INDEX_MAX; ++index) {
            EXPECT_EQ(g_camInfo[index].eCamType, CAM_TYPE_NONE) << index;
            EXPECT_EQ(g_camInfo[index].iDevIdx, -1) << index;
            EXPECT_EQ(CheckCameraIndex(index), 0xFFFFFFFFu) << index;
        }
    }

    static void FillAll()
    {
        for (uint32_t index = 0; index < CAMERA_INDEX_MAX; ++index) {
            SetCameraSlot(index, CAM_TYPE_U3V, static_cast<int32_t>(index));
            g_camInfo[index].bUseGenICam = index % 2 == 0;
        }
    }

    static void ExpectFlagsKept()
    {
        for (uint32_t index = 0; index < CAMERA_INDEX_MAX; ++index)
            EXPECT_EQ(g_camInfo[index].bUseGenICam, index % 2 == 0) << index;
    }
};

TEST_F(CameraIndexTest, EnumerationFillsTheFirstSlots)
{
    EXPECT_EQ(CheckCameraIndex(0), 0u);
    EXPECT_EQ(CheckCameraIndex(1), 0xFFFFFFFFu);
    EXPECT_EQ(CheckCameraIndex(63), 0xFFFFFFFFu);
}

TEST_F(CameraIndexTest, OnlySixtyFourExist)
{
    FillAll();
    EXPECT_EQ(CheckCameraIndex(63), 0u);
    for (const uint32_t index : {64u, 65u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(CheckCameraIndex(index), 0xFFFFFFFFu);
}

TEST_F(CameraIndexTest, SlotNeedsTypeAndDevice)
{
    SetCameraSlot(5, CAM_TYPE_NONE, 3);
    EXPECT_EQ(CheckCameraIndex(5), 0xFFFFFFFFu);
    SetCameraSlot(5, CAM_TYPE_U3V, -1);
    EXPECT_EQ(CheckCameraIndex(5), 0xFFFFFFFFu);
    SetCameraSlot(5, CAM_TYPE_U3V, -2147483647 - 1);
    EXPECT_EQ(CheckCameraIndex(5), 0xFFFFFFFFu);
    SetCameraSlot(5, CAM_TYPE_GEV, 0);
    EXPECT_EQ(CheckCameraIndex(5), 0u);
    SetCameraSlot(5, CAM_TYPE_U3V, 2147483647);
    EXPECT_EQ(CheckCameraIndex(5), 0u);
}

TEST_F(CameraIndexTest, TerminateEmptiesEverySlotButItsFlag)
{
    FillAll();
    Terminate();
    ExpectAllEmpty();
    ExpectFlagsKept();
}

TEST_F(CameraIndexTest, InitializeEmptiesEverySlotButItsFlag)
{
    Terminate();
    FillAll();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    ExpectAllEmpty();
    ExpectFlagsKept();
}

TEST_F(CameraIndexTest, InitializeWithBadFlagsEmptiesThemToo)
{
    Terminate();
    FillAll();
    EXPECT_EQ(Sys_Initialize(3), 13u);
    ExpectAllEmpty();
}

TEST_F(CameraIndexTest, SecondInitializeLeavesThem)
{
    FillAll();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 2u);
    EXPECT_EQ(CheckCameraIndex(63), 0u);
}

TEST_F(CameraIndexTest, OpenNotesItsFlagInTheSlot)
{
    for (const bool flag : {true, false}) {
        stub.Script(Stub::Entry::Cam_Open, {CAM_API_STS_TIMEOUT});
        CAM_HANDLE hCam;
        EXPECT_EQ(Cam_Open(0, &hCam, nullptr, flag, nullptr, CAM_ACCESS_MODE_CONTROL), 0x12u);
        EXPECT_EQ(g_camInfo[0].bUseGenICam, flag);
    }
}

} // namespace Orvi::Testing
