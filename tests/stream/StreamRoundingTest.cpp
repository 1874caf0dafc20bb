// The size of a simple stream on a camera of the second kind. No such camera answers the size query, so this program
// puts its own query in the place of the library's, as any program could.

#include "tests/support/ApiTest.h"

namespace {
uint32_t s_payloadSize;
}

extern "C" CAM_API_STATUS GetCamStreamPayloadSize(CAM_HANDLE, uint32_t *puiPayloadSize)
{
    *puiPayloadSize = s_payloadSize;
    return CAM_API_STS_SUCCESS;
}

namespace Orvi::Testing {

class StreamRoundingTest : public ApiTest {
  protected:
    StreamRoundingTest()
    {
        AddCamera(CAM_TYPE_U3V, hCamera);
        AddCamera(CAM_TYPE_GEV, hCameraGev);
        AddCamera(unknownCamType, hCameraUnknown);
    }

    uint32_t Opened(CAM_HANDLE hCam, uint32_t payload, CAM_API_STATUS expected)
    {
        s_payloadSize = payload;
        CAM_HANDLE hStrm = 0;
        uint32_t size = 0;
        EXPECT_EQ(Strm_OpenSimple(hCam, &hStrm, &size, nullptr, 0, 0), expected);
        return size;
    }
};

TEST_F(StreamRoundingTest, SecondKindRoundsUpToEightAndIsRefusedAllTheSame)
{
    EXPECT_EQ(Opened(hCameraGev, 1000, 7), 1000u);
    EXPECT_EQ(Opened(hCameraGev, 1001, 7), 1008u);
    EXPECT_EQ(Opened(hCameraGev, 1007, 7), 1008u);
    EXPECT_EQ(Opened(hCameraGev, 1, 7), 8u);
    EXPECT_EQ(Opened(hCameraGev, 0, 7), 0u);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(StreamRoundingTest, OtherKindsDoNotRound)
{
    EXPECT_EQ(Opened(hCamera, 1001, 0), 1001u);
    EXPECT_EQ(Opened(hCameraUnknown, 1001, 7), 1001u) << "written before the kind is refused";
}

TEST_F(StreamRoundingTest, SizeZeroOfARequestStreamOnTheSecondKind)
{
    s_payloadSize = 1001;
    CAM_HANDLE hStrm = 0;
    uint32_t size = 0;
    EXPECT_EQ(Strm_Open(hCameraGev, nullptr, &size, &hStrm, 0), 7u);
    EXPECT_EQ(size, 1001u) << "written, not rounded";
}

} // namespace Orvi::Testing
