#pragma once
// A virtual camera for the benchmarks, and how a benchmark ends when a call fails.

#include "OrviCamApi.h"

#include <cstdio>
#include <cstdlib>

namespace Orvi::Bench {

/// Ends the program, naming the call, unless it succeeded.
inline void Check(const char *what, CAM_API_STATUS status)
{
    if (status == CAM_API_STS_SUCCESS)
        return;
    std::fprintf(stderr, "bench: %s: status 0x%X\n", what, status);
    std::exit(2);
}

/// The library started with one virtual camera, which is open.
class BenchCamera {
  public:
    BenchCamera()
    {
        setenv("ORVICAMSDK", ORVI_BENCH_SDK, 1);
        setenv("ORVI_VIRTUAL_CAMERAS", "1", 1);
        uint32_t uiNum = 0;
        Check("Sys_Initialize", Sys_Initialize(SYS_INIT_U3V));
        Check("Sys_GetNumOfCameras", Sys_GetNumOfCameras(&uiNum));
        Check("Cam_Open", Cam_Open(0, &hCam_, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL));
    }
    BenchCamera(const BenchCamera &) = delete;
    BenchCamera &operator=(const BenchCamera &) = delete;
    ~BenchCamera()
    {
        Check("Cam_Close", Cam_Close(hCam_));
        Check("Sys_Terminate", Sys_Terminate());
    }

  protected:
    CAM_HANDLE hCam_ = 0;
};

} // namespace Orvi::Bench
