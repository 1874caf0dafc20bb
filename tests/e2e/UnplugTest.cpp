// A camera that is pulled out, or whose port is reset, while it streams.

#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

using UnplugTest = VirtualCameraTest;

TEST_F(UnplugTest, PendingRequestsCompleteAndTheNeighbourDoesNotNotice)
{
    const CAM_HANDLE hCam = Open(0), hNeighbour = Open(1);
    WriteWord(hCam, Virtual::unthrottled, 0);
    if (IsOverUsb()) // where a command may take as long as several images
        SetFloat(hCam, "ExposureTime", 1e6);
    {
        RequestChannel channel(hCam, 3), neighbour(hNeighbour, 3);
        channel.EnqueueAll();
        neighbour.EnqueueAll();
        channel.Start();
        neighbour.Start();
        channel.Enqueue(channel.Next().hRequest);
        WriteWord(hCam, Virtual::replugAfter, 200);
        WriteWord(hCam, Virtual::unplug, 1);
        int removed = 0;
        for (int i = 0; i < 3; ++i) {
            const Delivered done = channel.Next();
            EXPECT_TRUE(done.info.uiStatus == 0 || done.info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE)
                << std::hex << done.info.uiStatus;
            removed += done.info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
        }
        EXPECT_GE(removed, 1);
        uint32_t word = 0;
        EXPECT_NE(Cam_ReadReg(hCam, 0, 1, &word), 0u);
        CAM_HANDLE hNode = 0;
        int64_t value = 0;
        if (Nd_GetNode(hCam, "SensorWidth", &hNode) == 0) {
            EXPECT_NE(Nd_GetIntValue(hCam, hNode, &value, false, true), 0u);
        }
        for (int i = 0; i < 20; ++i) {
            const Delivered done = neighbour.Next();
            EXPECT_EQ(done.info.uiStatus, 0u);
            neighbour.Enqueue(done.hRequest);
        }
        neighbour.Stop();
        Strm_Stop(channel.Stream());
    }
    EXPECT_EQ(Cam_Close(hCam), 0u);

    AwaitCameras(2);
    const CAM_HANDLE hAgain = Open(0);
    RequestChannel channel(hAgain, 2);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(channel.Next().info.uiStatus, 0u) << "after a replug the same process goes on";
    channel.Stop();
}

TEST_F(UnplugTest, ResetOfThePortClosesTheCameraAndItOpensAnew)
{
    const CAM_HANDLE hCam = Open(0), hNeighbour = Open(1);
    {
        constexpr std::size_t buffers = 3;
        RequestChannel channel(hCam, buffers), neighbour(hNeighbour, 3);
        channel.EnqueueAll();
        channel.Start();
        const CAM_HANDLE hFirst = channel.Next().hRequest;
        EXPECT_EQ(Cam_ResetPort(hCam), 0u);
        for (std::size_t rest = 1; rest < buffers; ++rest) {
            const uint32_t status = channel.Next().info.uiStatus;
            EXPECT_TRUE(status == 0 || status == CAM_API_STS_FLUSH_REQUESTED) << std::hex << status;
        }
        EXPECT_FALSE(channel.TryNext());
        EXPECT_NE(Strm_EnqueueRequest(channel.Stream(), hFirst), 0u);
        uint32_t word = 0;
        EXPECT_NE(Cam_ReadReg(hCam, 0, 1, &word), 0u);

        neighbour.EnqueueAll();
        neighbour.Start();
        EXPECT_EQ(neighbour.Next().info.uiStatus, 0u) << "the neighbour does not notice";
        neighbour.Stop();
    }
    AwaitCameras(2);
    const CAM_HANDLE hAgain = Open(0);
    RequestChannel channel(hAgain, 2);
    channel.EnqueueAll();
    channel.Start();
    for (uint64_t block = 0; block < 5; ++block) {
        const Delivered done = channel.Next();
        EXPECT_EQ(done.info.uiStatus, 0u);
        EXPECT_EQ(done.info.ullBlockId, block);
        channel.Enqueue(done.hRequest);
    }
    channel.Stop();
}

} // namespace Orvi::Testing
