// Camera events into the application's own memory.

#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

class EventModeTest : public VirtualCameraTest {
  protected:
    static constexpr std::size_t requests = 4;

    EventModeTest() : hCam(Open())
    {
        uint32_t size = 0;
        EXPECT_EQ(Sys_CreateSignal(&hReady), 0u);
        EXPECT_EQ(Evt_Open(hCam, &hEvt, &size, reinterpret_cast<void *>(hReady)), 0u);
        EXPECT_GT(size, 0u);
        memory.resize(requests * size);
        for (std::size_t i = 0; i < requests; ++i) {
            CAM_HANDLE hRequest = 0;
            EXPECT_EQ(Evt_CreateRequest(hEvt, &memory[i * size], size, &hRequest), 0u);
            EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
        }
    }
    ~EventModeTest() override
    {
        EXPECT_EQ(Evt_Close(hEvt), 0u);
        EXPECT_EQ(Sys_CloseSignal(hReady), 0u);
    }

    /// The next event; its request is queued again.
    CAM_EVENT_REQUEST_INFO Next()
    {
        for (;;) {
            CAM_EVENT_REQUEST_INFO info{};
            CAM_HANDLE hRequest = 0;
            const CAM_API_STATUS status = Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info);
            if (status == CAM_API_STS_SUCCESS) {
                EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
                return info;
            }
            EXPECT_EQ(status, CAM_API_STS_EMPTY_COMPLETE_QUEUE);
            if (Sys_WaitForSignal(hReady, patience) != CAM_API_STS_SUCCESS) {
                ADD_FAILURE() << "no event has arrived";
                return info;
            }
        }
    }

    CAM_HANDLE hCam, hEvt = 0, hReady = 0;
    std::vector<unsigned char> memory;
};

TEST_F(EventModeTest, NothingArrivesUnasked)
{
    CAM_EVENT_REQUEST_INFO info{1, 2, 3, 4};
    EXPECT_EQ(Evt_DequeueRequest(hEvt, 0, &info), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    EXPECT_EQ(info.ullTimestamp, 3u);
}

TEST_F(EventModeTest, ActivationNeedsAKnownEventOnce)
{
    EXPECT_EQ(Evt_Activate(hEvt, "ExposureEnd", nullptr), 0u);
    EXPECT_EQ(Evt_Activate(hEvt, "ExposureEnd", nullptr), CAM_API_STS_ALREADY_ACTIVATED);
    EXPECT_EQ(Evt_Deactivate(hEvt, "ExposureEnd"), 0u);
    EXPECT_NE(Evt_Deactivate(hEvt, "ExposureEnd"), 0u);
    EXPECT_NE(Evt_Activate(hEvt, "NoSuchEvent", nullptr), 0u);
}

TEST_F(EventModeTest, EachImageHasItsEvent)
{
    EXPECT_EQ(Evt_Activate(hEvt, "ExposureEnd", nullptr), 0u);
    WriteWord(hCam, Virtual::unthrottled, 0);
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    uint64_t time = 0;
    for (int i = 0; i < 5; ++i) {
        const Delivered done = channel.Next();
        channel.Enqueue(done.hRequest);
        const CAM_EVENT_REQUEST_INFO event = Next();
        EXPECT_GE(event.usEventId, 0x9000);
        EXPECT_EQ(event.ullBlockId, done.info.ullBlockId);
        EXPECT_GT(event.ullTimestamp, time);
        time = event.ullTimestamp;
    }
    channel.Stop();
    EXPECT_EQ(Evt_Deactivate(hEvt, "ExposureEnd"), 0u);
}

TEST_F(EventModeTest, FlushedRequestsComeBack)
{
    EXPECT_EQ(Evt_FlushWaitQueue(hEvt), 0u);
    CAM_EVENT_REQUEST_INFO info{1, 2, 3, 4};
    for (std::size_t i = 0; i < requests; ++i) {
        CAM_HANDLE hRequest = 0;
        EXPECT_EQ(Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info), CAM_API_STS_FLUSH_REQUESTED);
        EXPECT_EQ(Evt_ReleaseRequest(hEvt, hRequest), 0u);
    }
    EXPECT_EQ(info.ullTimestamp, 3u) << "untouched without an event";
    EXPECT_EQ(Evt_DequeueRequest(hEvt, 0, &info), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    EXPECT_EQ(Evt_FlushWaitQueue(hEvt), 0u) << "nothing left is no failure";
}

} // namespace Orvi::Testing
