// Register access beyond the frame.

#include "tests/support/ApiTest.h"

namespace Orvi::Testing {

using Stub::Entry;

class CameraRegisterTest : public ApiTest {
  protected:
    CameraRegisterTest() { AddCamera(CAM_TYPE_U3V, hCamera); }

    uint32_t words[2] = {1, 2};
};

TEST_F(CameraRegisterTest, WordsGoBothWays)
{
    stub.registers = {{0x100, 11}, {0x104, 22}};
    EXPECT_EQ(Cam_ReadReg(hCamera, 0x100, 2, words), 0u);
    EXPECT_EQ(words[0], 11u);
    EXPECT_EQ(words[1], 22u);
    words[1] = 33;
    EXPECT_EQ(Cam_WriteReg(hCamera, 0x100, 2, words), 0u);
    EXPECT_EQ(stub.registers[0x104], 33u);
}

TEST_F(CameraRegisterTest, TransferOfAnotherCountIsAFailure)
{
    for (const uint32_t done : {1u, 3u, 0u}) {
        stub.on.Cam_ReadReg = [done](CAM_HANDLE, uint64_t, void *, uint32_t *count) -> CAM_API_STATUS {
            *count = done;
            return 0;
        };
        stub.on.Cam_WriteReg = [done](CAM_HANDLE, uint64_t, const void *, uint32_t *count) -> CAM_API_STATUS {
            *count = done;
            return 0;
        };
        EXPECT_EQ(Cam_ReadReg(hCamera, 0x100, 2, words), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog().back(), ExitLine(0xFFFFFFFF, "Cam_ReadReg"));
        EXPECT_EQ(Cam_WriteReg(hCamera, 0x100, 2, words), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog().back(), ExitLine(0xFFFFFFFF, "Cam_WriteReg"));
    }
    EXPECT_EQ(TakeDiagnostics(), Lines{}) << "the transport did not fail";
}

TEST_F(CameraRegisterTest, NullSourceIsNotShown)
{
    stub.Script(Entry::Cam_WriteReg, {0xD});
    EXPECT_EQ(Cam_WriteReg(hCamera, 0x100, 1, nullptr), 0xDu);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_WriteReg, hCam=0x11, ullAdrs=0x100, uiSizeQuadlet=1"),
                                ExitLine(0xD, "Cam_WriteReg")}));
    EXPECT_EQ(TakeCalls(), Lines{"Cam_WriteReg(0x11, 0x100, null, 1)"});
}

TEST_F(CameraRegisterTest, RefusedNodeAccessIsNotFetchedForRegisters)
{
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_GENICAM_ERR});
    EXPECT_EQ(Cam_ReadReg(hCamera, 0x100, 1, words), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(stub.CountOf(Entry::Misc_GetLastGenICamError), 0u);
}

} // namespace Orvi::Testing
