// What it costs to bring images of a virtual camera into the application's memory.

#include "Allocations.h"
#include "Claims.h"
#include "Turns.h"
#include "VirtualStream.h"

#include "vcam/Painter.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include <sys/resource.h>

namespace Orvi::Bench {

namespace {

constexpr std::size_t s_buffers = 8;
constexpr uint32_t s_fps = 100;

double ProcessorSeconds()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// One image, from the camera's memory to a dequeued request, as fast as they come; and one payload copied from the
/// same place into as many buffers as the stream has, so that caches help neither.
void ImageAndCopy(benchmark::State &state)
{
    VirtualStream stream(s_buffers);
    stream.Unthrottle();
    const std::vector<std::byte> source(stream.PayloadSize(), std::byte{1});
    std::vector<std::vector<std::byte>> targets(s_buffers, source);
    std::size_t next = 0;

    Turns turns(4 * s_buffers);
    turns.Add(
        [&] {
            std::memcpy(targets[next++ % s_buffers].data(), source.data(), source.size());
            benchmark::ClobberMemory();
        },
        [&] { stream.Stop(); });
    turns.Add([&] { stream.TakeImage(); }, [&] { stream.Start(); });
    for (auto _ : state)
        turns.Round();
    stream.Stop();
    state.counters["copy"] = turns.MedianTime(0) / 1000;
    state.counters["image"] = turns.MedianTime(1) / 1000;
    state.counters["ratio"] = turns.Median([](const Turns::Times &times) { return times[0] / times[1]; });
}
BENCHMARK(ImageAndCopy)->Iterations(100)->Repetitions(7)->ReportAggregatesOnly();

/// What an image costs the whole process once the stream is under way.
void SteadyImages(benchmark::State &state)
{
    VirtualStream stream(s_buffers);
    stream.Unthrottle();
    stream.Start();
    for (std::size_t i = 0; i < 4 * s_buffers; ++i)
        stream.TakeImage();
    const uint64_t allocations = Allocations();
    const double seconds = ProcessorSeconds();
    for (auto _ : state)
        stream.TakeImage();
    const auto images = static_cast<double>(state.iterations());
    state.counters["allocations"] = static_cast<double>(Allocations() - allocations) / images;
    state.counters["processor"] = (ProcessorSeconds() - seconds) / images * 1e6;
    stream.Stop();
}
BENCHMARK(SteadyImages)->Iterations(2000)->Repetitions(3)->ReportAggregatesOnly();

/// An image every 10 ms; "core" is the share of one processor core that the whole process takes.
void StreamAt100Fps(benchmark::State &state)
{
    VirtualStream stream(s_buffers);
    stream.SetFrameRate(s_fps);
    stream.Start();
    for (std::size_t i = 0; i < s_buffers; ++i)
        stream.TakeImage();
    const double before = ProcessorSeconds();
    for (auto _ : state)
        stream.TakeImage();
    const double seconds = static_cast<double>(state.iterations()) / s_fps;
    state.counters["core"] = (ProcessorSeconds() - before) / seconds;
    stream.Stop();
}
BENCHMARK(StreamAt100Fps)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime()
    ->Iterations(200)
    ->Repetitions(3)
    ->ReportAggregatesOnly();

/// Drawing alone, as the camera does it.
void DrawPicture(benchmark::State &state)
{
    Vcam::Painter painter;
    Vcam::PictureSettings settings;
    settings.sensorWidth = settings.width = 1920;
    settings.sensorHeight = settings.height = 1200;
    uint64_t block = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(painter.Draw(settings, block++).data());
}
BENCHMARK(DrawPicture)->Unit(benchmark::kMicrosecond)->Repetitions(7)->ReportAggregatesOnly();

const bool s_bandwidth = Add({"1920x1200 Mono8 from a virtual camera, of a memcpy of the payload",
                              [] { return Median("ImageAndCopy", "ratio"); }, "", Claim::Is::AtLeast, 0.6});

const bool s_processor = Add({"the same image's processor time, of all threads",
                              [] { return Median("SteadyImages", "processor"); }, " us", Claim::Is::Shown, 0});

const bool s_noAllocation =
    Add({"allocations per image", [] { return Median("SteadyImages", "allocations"); }, "", Claim::Is::AtMost, 0});

const bool s_core = Add({"share of a core at 100 fps above drawing",
                         [] { return (Median("StreamAt100Fps", "core") - s_fps * Median("DrawPicture") * 1e-6) * 100; },
                         " %", Claim::Is::AtMost, 15});

} // namespace

} // namespace Orvi::Bench
