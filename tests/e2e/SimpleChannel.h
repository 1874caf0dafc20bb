#pragma once
// A stream in simple mode, as an application keeps it.

#include "tests/e2e/VirtualCameraTest.h"

namespace Orvi::Testing {

/// A stream in simple mode.
class SimpleChannel {
  public:
    explicit SimpleChannel(CAM_HANDLE hCam, uint32_t buffers = 4)
    {
        EXPECT_EQ(Sys_CreateSignal(&hReady_), 0u);
        EXPECT_EQ(Strm_OpenSimple(hCam, &hStrm_, &payload_, reinterpret_cast<void *>(hReady_), buffers, 0), 0u);
    }
    ~SimpleChannel()
    {
        EXPECT_EQ(Strm_Close(hStrm_), 0u);
        EXPECT_EQ(Sys_CloseSignal(hReady_), 0u);
    }
    SimpleChannel(const SimpleChannel &) = delete;
    SimpleChannel &operator=(const SimpleChannel &) = delete;

    CAM_HANDLE Stream() const { return hStrm_; }
    uint32_t PayloadSize() const { return payload_; }
    void Start() { EXPECT_EQ(Strm_Start(hStrm_, CAM_ACQ_MODE_CONTINUOUS), 0u); }
    void Stop() { EXPECT_EQ(Strm_Stop(hStrm_), 0u); }
    void AwaitImage() { EXPECT_EQ(Sys_WaitForSignal(hReady_, patience), 0u); }

  private:
    CAM_HANDLE hStrm_ = 0, hReady_ = 0;
    uint32_t payload_ = 0;
};

} // namespace Orvi::Testing
