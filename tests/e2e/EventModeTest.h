#pragma once
// The fixture of the tests with camera events in the application's own memory.

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

} // namespace Orvi::Testing
