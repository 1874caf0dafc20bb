#pragma once
// An open camera of the empty transport.

#include "OrviCamApi.h"

#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace Orvi::Bench {

class NullCamera {
  public:
    NullCamera()
    {
        setenv("ORVICAMSDK", ORVI_NULL_SDK, 1);
        uint32_t uiNum = 0;
        if (Sys_Initialize(SYS_INIT_U3V) != CAM_API_STS_SUCCESS || Sys_GetNumOfCameras(&uiNum) != CAM_API_STS_SUCCESS ||
            Cam_Open(0, &hCam_, nullptr, false, nullptr, CAM_ACCESS_MODE_CONTROL) != CAM_API_STS_SUCCESS) {
            std::fprintf(stderr, "bench: the empty transport in %s does not start\n", ORVI_NULL_SDK);
            std::exit(2);
        }
        transport_ = dlopen(ORVI_NULL_SDK "/lib/libOrviU3vCamApi_64.so", RTLD_LAZY | RTLD_NOLOAD);
    }
    NullCamera(const NullCamera &) = delete;
    NullCamera &operator=(const NullCamera &) = delete;
    ~NullCamera()
    {
        Cam_Close(hCam_);
        dlclose(transport_);
        Sys_Terminate();
    }

    CAM_HANDLE Handle() const { return hCam_; }
    void *Transport() const { return transport_; }

  private:
    CAM_HANDLE hCam_ = 0;
    void *transport_ = nullptr;
};

} // namespace Orvi::Bench
