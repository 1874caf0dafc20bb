// What a feature function costs above the block read and write that it consists of.

#include "Claims.h"

#include "OrviCamApi.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace Orvi::Bench {

namespace {

using ReadReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, void *, uint32_t *);
using WriteReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, const void *, uint32_t *);

constexpr uint64_t s_gainBlock = 0x204060;
constexpr uint64_t s_exposureBlock = 0x204020;
constexpr uint64_t s_value = 0x1C;

void Check(const char *what, CAM_API_STATUS status)
{
    if (status == CAM_API_STS_SUCCESS)
        return;
    std::fprintf(stderr, "bench: %s: status 0x%X\n", what, status);
    std::exit(2);
}

/// An open virtual camera and the transport's own register entries.
class Camera {
  public:
    Camera()
    {
        setenv("ORVICAMSDK", ORVI_BENCH_SDK, 1);
        setenv("ORVI_VIRTUAL_CAMERAS", "1", 1);
        uint32_t uiNum = 0;
        Check("Sys_Initialize", Sys_Initialize(SYS_INIT_U3V));
        Check("Sys_GetNumOfCameras", Sys_GetNumOfCameras(&uiNum));
        Check("Cam_Open", Cam_Open(0, &hCam, nullptr, false, nullptr, CAM_ACCESS_MODE_CONTROL));
        void *transport = dlopen(ORVI_BENCH_SDK "/lib/libOrviU3vCamApi_64.so", RTLD_LAZY | RTLD_NOLOAD);
        read = reinterpret_cast<ReadReg>(dlsym(transport, "UC_Cam_ReadReg"));
        write = reinterpret_cast<WriteReg>(dlsym(transport, "UC_Cam_WriteReg"));
        dlclose(transport);
    }
    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;
    ~Camera()
    {
        Check("Cam_Close", Cam_Close(hCam));
        Check("Sys_Terminate", Sys_Terminate());
    }

    CAM_HANDLE hCam = 0;
    ReadReg read = nullptr;
    WriteReg write = nullptr;
};

void GainBlockRead(benchmark::State &state)
{
    const Camera camera;
    uint32_t auiBlock[8];
    for (auto _ : state) {
        uint32_t uiSize = 8;
        Check("UC_Cam_ReadReg", camera.read(camera.hCam, s_gainBlock, auiBlock, &uiSize));
    }
}
BENCHMARK(GainBlockRead)->Repetitions(15)->ReportAggregatesOnly();

void GainGet(benchmark::State &state)
{
    const Camera camera;
    double dGain = 0;
    for (auto _ : state)
        Check("GetCamGain", GetCamGain(camera.hCam, &dGain));
}
BENCHMARK(GainGet)->Repetitions(15)->ReportAggregatesOnly();

void ExposureBlockReadAndWrite(benchmark::State &state)
{
    const Camera camera;
    Check("SetCamExposureTime", SetCamExposureTime(camera.hCam, 5000));
    uint32_t auiBlock[8];
    uint32_t uiSize = 8;
    Check("UC_Cam_ReadReg", camera.read(camera.hCam, s_exposureBlock, auiBlock, &uiSize));
    const uint32_t uiValue = auiBlock[7];
    for (auto _ : state) {
        uiSize = 7;
        Check("UC_Cam_ReadReg", camera.read(camera.hCam, s_exposureBlock, auiBlock, &uiSize));
        uiSize = 1;
        Check("UC_Cam_WriteReg", camera.write(camera.hCam, s_exposureBlock + s_value, &uiValue, &uiSize));
    }
}
BENCHMARK(ExposureBlockReadAndWrite)->Repetitions(15)->ReportAggregatesOnly();

void ExposureSet(benchmark::State &state)
{
    const Camera camera;
    for (auto _ : state)
        Check("SetCamExposureTime", SetCamExposureTime(camera.hCam, 5000));
}
BENCHMARK(ExposureSet)->Repetitions(15)->ReportAggregatesOnly();

const bool s_gain = Add({"GetCamGain above its block read through the transport",
                         [] { return Median("GainGet") - Median("GainBlockRead"); }, " ns", Claim::Is::AtMost, 60});
const bool s_exposure =
    Add({"SetCamExposureTime above its block read and write through the transport",
         [] { return Median("ExposureSet") - Median("ExposureBlockReadAndWrite"); }, " ns", Claim::Is::AtMost, 60});

} // namespace

} // namespace Orvi::Bench
