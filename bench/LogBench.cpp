// What the two lines of a call cost while the memory log is up, against the same two texts given to a well-known
// logger that also keeps them in memory.

#include "Claims.h"
#include "NullCamera.h"
#include "Turns.h"

#include <benchmark/benchmark.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/ringbuffer_sink.h>

#include <memory>
#include <thread>

namespace Orvi::Bench {

namespace {

constexpr uint32_t s_uiRing = 1 << 16; // some hundreds of lines, as programs keep them

/// A process that has never had a second thread takes its locks without atomic operations, and no program with a camera
/// is one.
void UseLocksOfThreads()
{
    std::thread([] {}).join();
}

/// The lines as a call writes them; the call's own cost is taken off afterwards.
void LinesOfACall(benchmark::State &state)
{
    NullCamera camera;
    uint32_t uiWord = 0;
    const auto call = [&] { benchmark::DoNotOptimize(Cam_ReadReg(camera.Handle(), 0x204060, 1, &uiWord)); };

    const auto sink = std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(8192);
    spdlog::logger logger("bench", sink);
    const uint64_t hCam = 0x1234567890ABCDEF;
    const uint64_t ullAdrs = 0x204060;
    benchmark::DoNotOptimize(uiWord);

    UseLocksOfThreads();
    Turns turns(400);
    turns.Add(call, [] { Log_Terminate(); });
    turns.Add(call, [] { Log_InitializeMem(s_uiRing, CAM_LOG_LEVEL_DEBUG); });
    turns.Add([&] {
        logger.info("ENTER: {}, hCam=0x{:X}, ullAdrs=0x{:X}, uiSizeQuadlet={}", "Cam_ReadReg", hCam, ullAdrs, 1);
        logger.info("EXIT: {}, pvData[0]=0x{:08X}", "Cam_ReadReg", uiWord);
    });
    for (auto _ : state)
        turns.Round();
    Log_Terminate();
    state.counters["ours"] = turns.Median([](const Turns::Times &times) { return times[1] - times[0]; });
    state.counters["spdlog"] = turns.MedianTime(2);
    state.counters["ratio"] = turns.Median([](const Turns::Times &times) { return (times[1] - times[0]) / times[2]; });
}
BENCHMARK(LinesOfACall)->Iterations(1000)->Repetitions(7)->ReportAggregatesOnly();

const bool s_pair =
    Add({"ENTER and EXIT line into the memory log (64 KiB), of two equal messages to spdlog's ring buffer",
         [] { return Median("LinesOfACall", "ratio"); }, "", Claim::Is::AtMost, 0.5});

} // namespace

} // namespace Orvi::Bench
