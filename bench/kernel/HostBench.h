#pragma once
// What a host does with a camera while it is measured, and how that is told: the same for every host, so that only the
// hosts differ.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <sys/resource.h>

namespace Orvi::Bench {

/// A host with an open camera: 640 x 480 Mono8, as fast as the host takes the images.
class Host {
  public:
    virtual ~Host() = default;
    virtual void Start() = 0;
    /// Waits for the next good image, gives its buffer back and answers its size.
    virtual std::size_t TakeImage() = 0;
    /// Returns when the stream is at rest.
    virtual void Stop() = 0;
    virtual std::uint32_t ReadRegister(std::uint64_t address) = 0;
};

constexpr std::uint32_t s_width = 640, s_height = 480, s_buffers = 8;
constexpr std::uint64_t s_unthrottled = 0x0F00000C, s_sensorWidth = 0x20207C;

inline double ProcessorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

inline double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Prints one line for each figure.
inline void Measure(Host &host)
{
    constexpr int warmUp = 20, images = 200, rows = 20, reads = 50, stops = 5;
    host.Start();
    for (int i = 0; i < warmUp; ++i)
        host.TakeImage();
    std::size_t bytes = 0;
    double time = Now(), processor = ProcessorSeconds();
    for (int i = 0; i < images; ++i)
        bytes += host.TakeImage();
    time = Now() - time;
    processor = ProcessorSeconds() - processor;
    host.Stop();
    std::printf("figure bytes-per-second %.0f\n", static_cast<double>(bytes) / time);
    std::printf("figure processor-us-per-image %.1f\n", processor / images * 1e6);

    // What else the machine does falls upon some rows; the fastest one is the host's own.
    double fastest = 0;
    for (int row = 0; row < rows; ++row) {
        time = Now();
        for (int i = 0; i < reads; ++i)
            host.ReadRegister(s_sensorWidth);
        fastest = std::max(fastest, reads / (Now() - time));
    }
    std::printf("figure reads-per-second %.1f\n", fastest);

    double stopping = 0;
    for (int i = 0; i < stops; ++i) {
        host.Start();
        host.TakeImage();
        const double begin = Now();
        host.Stop();
        stopping += Now() - begin;
    }
    std::printf("figure stop-ms %.2f\n", stopping / stops * 1e3);
}

} // namespace Orvi::Bench
