// Camera events into the application's own memory.

#include "tests/e2e/EventModeTest.h"

namespace Orvi::Testing {

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
