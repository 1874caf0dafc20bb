// What a call through the library costs above the transport's own entry.

#include "Claims.h"
#include "NullCamera.h"
#include "Turns.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace Orvi::Bench {

namespace {

using ReadReg = CAM_API_STATUS (*)(CAM_HANDLE, uint64_t, void *, uint32_t *);

void ReadRegByTheLibrary(benchmark::State &state)
{
    NullCamera camera;
    const auto read = reinterpret_cast<ReadReg>(dlsym(camera.Transport(), "UC_Cam_ReadReg"));
    uint32_t uiWord = 0;
    Turns turns(5000);
    turns.Add([&] {
        uint32_t uiSize = 1;
        benchmark::DoNotOptimize(read(camera.Handle(), 0x204060, &uiWord, &uiSize));
    });
    turns.Add([&] { benchmark::DoNotOptimize(Cam_ReadReg(camera.Handle(), 0x204060, 1, &uiWord)); });
    for (auto _ : state)
        turns.Round();
    state.counters["entry"] = turns.MedianTime(0);
    state.counters["library"] = turns.MedianTime(1);
    state.counters["above"] = turns.Median([](const Turns::Times &times) { return times[1] - times[0]; });
}
BENCHMARK(ReadRegByTheLibrary)->Iterations(1000)->Repetitions(7)->ReportAggregatesOnly();

const bool s_overhead = Add({"`Cam_ReadReg` with the log down, above the transport's entry",
                             [] { return Median("ReadRegByTheLibrary", "above"); }, " ns", Claim::Is::AtMost, 8});

} // namespace

} // namespace Orvi::Bench
