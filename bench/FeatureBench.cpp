// What a feature function costs above the block read and write that it consists of.

#include "BenchCamera.h"
#include "Claims.h"

#include <benchmark/benchmark.h>

#include <cstdint>

#include <dlfcn.h>

namespace Orvi::Bench {

namespace {

using ReadReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, void *, uint32_t *);
using WriteReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, const void *, uint32_t *);

constexpr uint64_t s_gainBlock = 0x204060;
constexpr uint64_t s_exposureBlock = 0x204020;
constexpr uint64_t s_value = 0x1C;

/// An open virtual camera and the transport's own register entries.
class Camera : public BenchCamera {
  public:
    Camera()
    {
        void *transport = dlopen(ORVI_BENCH_SDK "/lib/libOrviU3vCamApi_64.so", RTLD_LAZY | RTLD_NOLOAD);
        read = reinterpret_cast<ReadReg>(dlsym(transport, "UC_Cam_ReadReg"));
        write = reinterpret_cast<WriteReg>(dlsym(transport, "UC_Cam_WriteReg"));
        dlclose(transport);
    }
    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    CAM_HANDLE Handle() const { return hCam_; }

    ReadReg read = nullptr;
    WriteReg write = nullptr;
};

void GainBlockRead(benchmark::State &state)
{
    const Camera camera;
    uint32_t auiBlock[8];
    for (auto _ : state) {
        uint32_t uiSize = 8;
        Check("UC_Cam_ReadReg", camera.read(camera.Handle(), s_gainBlock, auiBlock, &uiSize));
    }
}
BENCHMARK(GainBlockRead)->Repetitions(15)->ReportAggregatesOnly();

void GainGet(benchmark::State &state)
{
    const Camera camera;
    double dGain = 0;
    for (auto _ : state)
        Check("GetCamGain", GetCamGain(camera.Handle(), &dGain));
}
BENCHMARK(GainGet)->Repetitions(15)->ReportAggregatesOnly();

void ExposureBlockReadAndWrite(benchmark::State &state)
{
    const Camera camera;
    Check("SetCamExposureTime", SetCamExposureTime(camera.Handle(), 5000));
    uint32_t auiBlock[8];
    uint32_t uiSize = 8;
    Check("UC_Cam_ReadReg", camera.read(camera.Handle(), s_exposureBlock, auiBlock, &uiSize));
    const uint32_t uiValue = auiBlock[7];
    for (auto _ : state) {
        uiSize = 7;
        Check("UC_Cam_ReadReg", camera.read(camera.Handle(), s_exposureBlock, auiBlock, &uiSize));
        uiSize = 1;
        Check("UC_Cam_WriteReg", camera.write(camera.Handle(), s_exposureBlock + s_value, &uiValue, &uiSize));
    }
}
BENCHMARK(ExposureBlockReadAndWrite)->Repetitions(15)->ReportAggregatesOnly();

void ExposureSet(benchmark::State &state)
{
    const Camera camera;
    for (auto _ : state)
        Check("SetCamExposureTime", SetCamExposureTime(camera.Handle(), 5000));
}
BENCHMARK(ExposureSet)->Repetitions(15)->ReportAggregatesOnly();

const bool s_gain = Add({"GetCamGain above its block read through the transport",
                         [] { return Median("GainGet") - Median("GainBlockRead"); }, " ns", Claim::Is::AtMost, 60});
const bool s_exposure =
    Add({"SetCamExposureTime above its block read and write through the transport",
         [] { return Median("ExposureSet") - Median("ExposureBlockReadAndWrite"); }, " ns", Claim::Is::AtMost, 60});

} // namespace

} // namespace Orvi::Bench
