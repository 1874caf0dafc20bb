// What a feature function costs above the block read and write that it consists of.

#include "BenchCamera.h"
#include "Claims.h"
#include "Turns.h"

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
        read_ = reinterpret_cast<ReadReg>(dlsym(transport, "UC_Cam_ReadReg"));
        write_ = reinterpret_cast<WriteReg>(dlsym(transport, "UC_Cam_WriteReg"));
        dlclose(transport);
    }
    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    CAM_HANDLE Handle() const { return hCam_; }

    void Read(uint64_t ullAdrs, uint32_t *puiWords, uint32_t uiCount) const
    {
        Check("UC_Cam_ReadReg", read_(hCam_, ullAdrs, puiWords, &uiCount));
    }
    void WriteWord(uint64_t ullAdrs, uint32_t uiWord) const
    {
        uint32_t uiCount = 1;
        Check("UC_Cam_WriteReg", write_(hCam_, ullAdrs, &uiWord, &uiCount));
    }

  private:
    ReadReg read_ = nullptr;
    WriteReg write_ = nullptr;
};

/// Times a feature function and the block accesses that it consists of.
template <class Blocks, class Feature>
void Compare(benchmark::State &state, const Blocks &blocks, const Feature &feature)
{
    Turns turns(20);
    turns.Add(blocks);
    turns.Add(feature);
    for (auto _ : state)
        turns.Round();
    state.counters["blocks"] = turns.MedianTime(0);
    state.counters["feature"] = turns.MedianTime(1);
    state.counters["above"] = turns.Median([](const Turns::Times &times) { return times[1] - times[0]; });
}

void GetGain(benchmark::State &state)
{
    const Camera camera;
    uint32_t auiBlock[8];
    double dGain = 0;
    Compare(
        state, [&] { camera.Read(s_gainBlock, auiBlock, 8); },
        [&] { Check("GetCamGain", GetCamGain(camera.Handle(), &dGain)); });
}
BENCHMARK(GetGain)->Iterations(2000)->Repetitions(7)->ReportAggregatesOnly();

void SetExposureTime(benchmark::State &state)
{
    const Camera camera;
    const auto set = [&] { Check("SetCamExposureTime", SetCamExposureTime(camera.Handle(), 5000)); };
    set();
    uint32_t auiBlock[8];
    camera.Read(s_exposureBlock, auiBlock, 8);
    const uint32_t uiValue = auiBlock[7];
    Compare(
        state,
        [&] {
            camera.Read(s_exposureBlock, auiBlock, 7);
            camera.WriteWord(s_exposureBlock + s_value, uiValue);
        },
        set);
}
BENCHMARK(SetExposureTime)->Iterations(2000)->Repetitions(7)->ReportAggregatesOnly();

const bool s_gain = Add({"`GetCamGain` above its block read through the transport",
                         [] { return Median("GetGain", "above"); }, " ns", Claim::Is::AtMost, 60});
const bool s_exposure = Add({"`SetCamExposureTime` above its block read and write through the transport",
                             [] { return Median("SetExposureTime", "above"); }, " ns", Claim::Is::AtMost, 60});

} // namespace

} // namespace Orvi::Bench
