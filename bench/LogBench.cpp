// What the two lines of a call cost while the memory log is up, against the same two texts given to a well-known
// logger that also keeps them in memory.

#include "Claims.h"
#include "NullCamera.h"

#include <benchmark/benchmark.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/ringbuffer_sink.h>

#include <memory>

namespace Orvi::Bench {

namespace {

constexpr uint32_t s_uiRing = 1 << 16; // some hundreds of lines, as programs keep them

void LoggedPair(benchmark::State &state)
{
    NullCamera camera;
    Log_InitializeMem(s_uiRing, CAM_LOG_LEVEL_DEBUG);
    uint32_t uiWord = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(Cam_ReadReg(camera.Handle(), 0x204060, 1, &uiWord));
    Log_Terminate();
}
BENCHMARK(LoggedPair)->Repetitions(9)->ReportAggregatesOnly();

void SpdlogPair(benchmark::State &state)
{
    const auto sink = std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(8192);
    spdlog::logger logger("bench", sink);
    const uint64_t hCam = 0x1234567890ABCDEF;
    const uint64_t ullAdrs = 0x204060;
    uint32_t uiWord = 0;
    benchmark::DoNotOptimize(uiWord);
    for (auto _ : state) {
        logger.info("ENTER: {}, hCam=0x{:X}, ullAdrs=0x{:X}, uiSizeQuadlet={}", "Cam_ReadReg", hCam, ullAdrs, 1);
        logger.info("EXIT: {}, pvData[0]=0x{:08X}", "Cam_ReadReg", uiWord);
    }
}
BENCHMARK(SpdlogPair)->Repetitions(9)->ReportAggregatesOnly();

const bool s_pair = Add({"ENTER and EXIT line into the memory log, of two equal messages to spdlog's ring buffer",
                         [] { return (Median("LoggedPair") - Median("ReadRegLibrary")) / Median("SpdlogPair"); }, "",
                         Claim::Is::AtMost, 0.5});

} // namespace

} // namespace Orvi::Bench
