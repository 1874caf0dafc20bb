// Camera events beside images, and what becomes of them when something ends.

#include "tests/e2e/EventModeTest.h"

#include <atomic>
#include <thread>

namespace Orvi::Testing {

class EventStreamTest : public EventModeTest {
  protected:
    CAM_API_STATUS Activate(const char *name) { return Evt_Activate(hEvt, name, nullptr); }

    /// Dequeues without waiting; the request is queued again after an event.
    CAM_API_STATUS TryNext(CAM_EVENT_REQUEST_INFO &info)
    {
        CAM_HANDLE hRequest = 0;
        const CAM_API_STATUS status = Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info);
        if (status == CAM_API_STS_SUCCESS) {
            EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
        }
        return status;
    }
};

TEST_F(EventStreamTest, TenThousandImagesHaveTenThousandEvents)
{
    const int images = Rounds(10000, 1000);
    ASSERT_EQ(Activate("ExposureEnd"), 0u);
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    for (int i = 0; i < images; ++i) {
        const Delivered done = channel.Next();
        const CAM_EVENT_REQUEST_INFO event = Next();
        ASSERT_EQ(done.info.uiStatus, 0u);
        ASSERT_EQ(event.ullBlockId, done.info.ullBlockId) << "image " << i;
        ASSERT_EQ(event.ullTimestamp, done.info.ullDeviceTimestamp) << "an image is stamped at the end of its exposure";
        channel.Enqueue(done.hRequest);
    }
    channel.Stop();
    EXPECT_EQ(channel.LostCount(), 0u);
}

TEST_F(EventStreamTest, EventsComeInTheOrderOfAnImage)
{
    const char *const names[] = {"ExposureStart", "ExposureEnd", "FrameStart", "FrameEnd"};
    for (const char *name : names) {
        ASSERT_EQ(Activate(name), 0u) << name;
    }
    WriteWord(hCam, Virtual::unthrottled, 0);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    uint64_t last = 0;
    unsigned seen = 0;
    for (int i = 0; i < 8; ++i) {
        const CAM_EVENT_REQUEST_INFO event = Next();
        EXPECT_GE(event.ullTimestamp, last);
        last = event.ullTimestamp;
        seen |= 1u << (event.usEventId & 0xF);
    }
    channel.Stop();
    EXPECT_EQ(seen, 0b11110u) << "each of the four, and no other";
}

TEST_F(EventStreamTest, NodesReadBackWhatTheLastEventCarried)
{
    ASSERT_EQ(Activate("FrameEnd"), 0u);
    RequestChannel channel(hCam, 1);
    channel.EnqueueAll();
    channel.Start();
    const CAM_EVENT_REQUEST_INFO event = Next();
    EXPECT_EQ(GetInt(hCam, "EventFrameEnd"), event.usEventId);
    EXPECT_EQ(GetInt(hCam, "EventFrameEndFrameID"), static_cast<int64_t>(event.ullBlockId));
    EXPECT_EQ(GetInt(hCam, "EventFrameEndTimestamp"), static_cast<int64_t>(event.ullTimestamp));
    channel.Stop();
}

TEST_F(EventStreamTest, AnEventSetsTheSignalGivenForIt)
{
    CAM_HANDLE hArrived = 0;
    ASSERT_EQ(Sys_CreateSignal(&hArrived), 0u);
    ASSERT_EQ(Evt_Activate(hEvt, "AcquisitionStart", reinterpret_cast<void *>(hArrived)), 0u);
    RequestChannel channel(hCam, 1);
    channel.EnqueueAll();
    channel.Start();
    EXPECT_EQ(Sys_WaitForSignal(hArrived, patience), 0u);
    Next();
    channel.Stop();
    EXPECT_EQ(Evt_Deactivate(hEvt, "AcquisitionStart"), 0u);
    EXPECT_EQ(Sys_CloseSignal(hArrived), 0u);
}

TEST_F(EventStreamTest, ActivatedAndDeactivatedWhileStreaming)
{
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    std::atomic<bool> stop = false;
    std::thread images([&] {
        while (!stop) {
            channel.Enqueue(channel.Next().hRequest);
        }
    });
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(Activate("FrameStart"), 0u);
        Next();
        ASSERT_EQ(Evt_Deactivate(hEvt, "FrameStart"), 0u);
        CAM_EVENT_REQUEST_INFO info;
        while (TryNext(info) == CAM_API_STS_SUCCESS) {
        }
    }
    stop = true;
    images.join();
    channel.Stop();
}

TEST_F(EventStreamTest, TheChannelMayCloseBeforeTheStream)
{
    ASSERT_EQ(Activate("FrameStart"), 0u);
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    Next();
    ASSERT_EQ(Evt_Close(hEvt), 0u);
    for (int i = 0; i < 10; ++i) {
        channel.Enqueue(channel.Next().hRequest);
    }
    channel.Stop();
    CAM_EVENT_REQUEST_INFO info;
    EXPECT_EQ(Evt_DequeueRequest(hEvt, 0, &info), CAM_API_STS_INVALID_EVENT_HANDLE);
    uint32_t size = 0;
    ASSERT_EQ(Evt_Open(hCam, &hEvt, &size, reinterpret_cast<void *>(hReady)), 0u) << "and open again";
}

TEST_F(EventStreamTest, TheChannelGoesOnWithoutTheStream)
{
    ASSERT_EQ(Activate("AcquisitionEnd"), 0u);
    {
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        channel.Enqueue(channel.Next().hRequest);
        channel.Stop();
    }
    Next();
    ASSERT_EQ(Activate("Test"), 0u);
    WriteWord(hCam, 0x30008, 1);
    EXPECT_EQ(Next().usEventId, 0x4FFF) << "the test event needs no stream";
}

TEST_F(EventStreamTest, AnUnpluggedCameraEndsAllRequests)
{
    ASSERT_EQ(Activate("FrameStart"), 0u);
    WriteWord(hCam, Virtual::replugAfter, 1);
    WriteWord(hCam, Virtual::unplug, 1);
    for (std::size_t i = 0; i < requests;) {
        CAM_EVENT_REQUEST_INFO info{};
        CAM_HANDLE hRequest = 0;
        const CAM_API_STATUS status = Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info);
        if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE) {
            ASSERT_EQ(Sys_WaitForSignal(hReady, patience), 0u);
            continue;
        }
        EXPECT_EQ(status, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
        ++i;
    }
    EXPECT_NE(Activate("FrameEnd"), 0u);
    AwaitCameras(2);
}

TEST_F(EventStreamTest, AnImageWithoutABufferIsAnEvent)
{
    ASSERT_EQ(Activate("FrameLost"), 0u);
    WriteWord(hCam, Virtual::unthrottled, 0);
    RequestChannel channel(hCam, 1); // nothing is queued
    channel.Start();
    const uint64_t first = Next().ullBlockId;
    EXPECT_EQ(Next().ullBlockId, first + 1) << "each lost image has its event";
    channel.Stop();
    EXPECT_EQ(Evt_Deactivate(hEvt, "FrameLost"), 0u);
}

TEST_F(EventStreamTest, TheTransportsOwnRequestsServeTheSameEvents)
{
    ASSERT_EQ(Evt_Close(hEvt), 0u);
    ASSERT_EQ(Evt_OpenSimple(hCam, &hEvt, 0), 0u);
    CAM_HANDLE hArrived = 0;
    ASSERT_EQ(Sys_CreateSignal(&hArrived), 0u);
    ASSERT_EQ(Evt_Activate(hEvt, "Test", reinterpret_cast<void *>(hArrived)), 0u);
    for (int i = 0; i < 20; ++i) { // more than there are buffers
        WriteWord(hCam, 0x30008, 1);
        ASSERT_EQ(Sys_WaitForSignal(hArrived, patience), 0u);
        CAM_EVENT_REQUEST_INFO info{};
        ASSERT_EQ(Evt_DequeueRequest(hEvt, 0, &info), 0u);
        EXPECT_EQ(info.usEventId, 0x4FFF);
    }
    EXPECT_EQ(Sys_CloseSignal(hArrived), 0u);
}

} // namespace Orvi::Testing
