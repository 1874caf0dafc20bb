// What a call through the library costs above the transport's own entry, log down and log up.

#include "Claims.h"
#include "NullCamera.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace Orvi::Bench {

namespace {

using ReadReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, void *, uint32_t *);

void ReadRegDirect(benchmark::State &state)
{
    NullCamera camera;
    const auto read = reinterpret_cast<ReadReg>(dlsym(camera.Transport(), "UC_Cam_ReadReg"));
    uint32_t uiWord = 0;
    for (auto _ : state) {
        uint32_t uiSize = 1;
        benchmark::DoNotOptimize(read(camera.Handle(), 0x204060, &uiWord, &uiSize));
    }
}
BENCHMARK(ReadRegDirect)->Repetitions(9)->ReportAggregatesOnly();

void ReadRegLibrary(benchmark::State &state)
{
    NullCamera camera;
    uint32_t uiWord = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(Cam_ReadReg(camera.Handle(), 0x204060, 1, &uiWord));
}
BENCHMARK(ReadRegLibrary)->Repetitions(9)->ReportAggregatesOnly();

const bool s_overhead =
    Add({"Cam_ReadReg with the log down, above the transport's entry",
         [] { return Median("ReadRegLibrary") - Median("ReadRegDirect"); }, " ns", Claim::Is::AtMost, 8});

} // namespace

} // namespace Orvi::Bench
