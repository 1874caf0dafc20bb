// How long a camera's event takes from its time stamp in the device to the application that waits for it.

#include "BenchCamera.h"
#include "Claims.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

namespace Orvi::Bench {

namespace {

constexpr uint64_t s_timestamp = 0x1F0;
constexpr uint64_t s_timestampLatch = 0x1F8;
constexpr uint64_t s_testEvent = 0x30008;

int64_t Now()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// An event channel of a virtual camera, and what lies between the camera's clock and this machine's.
class EventSource : public BenchCamera {
  public:
    EventSource()
    {
        Check("Sys_CreateSignal", Sys_CreateSignal(&hReady_));
        uint32_t uiSize = 0;
        Check("Evt_Open", Evt_Open(hCam_, &hEvt_, &uiSize, reinterpret_cast<void *>(hReady_)));
        memory_.assign(4, std::vector<unsigned char>(uiSize));
        for (std::vector<unsigned char> &buffer : memory_) {
            CAM_HANDLE hRequest = 0;
            Check("Evt_CreateRequest", Evt_CreateRequest(hEvt_, buffer.data(), uiSize, &hRequest));
            Check("Evt_EnqueueRequest", Evt_EnqueueRequest(hEvt_, hRequest));
        }
        Check("Evt_Activate", Evt_Activate(hEvt_, "Test", nullptr));
        offset_ = ClockOffset();
    }
    EventSource(const EventSource &) = delete;
    EventSource &operator=(const EventSource &) = delete;
    ~EventSource()
    {
        Check("Evt_Close", Evt_Close(hEvt_));
        Check("Sys_CloseSignal", Sys_CloseSignal(hReady_));
    }

    /// Lets the camera post an event and waits for it; the time from its stamp to now in ns.
    double Deliver()
    {
        const uint32_t uiOn = 1;
        Check("Cam_WriteReg", Cam_WriteReg(hCam_, s_testEvent, 1, &uiOn));
        CAM_HANDLE hRequest = 0;
        CAM_EVENT_REQUEST_INFO info;
        CAM_API_STATUS status;
        while ((status = Evt_DequeueRequest(hEvt_, reinterpret_cast<uint64_t>(&hRequest), &info)) ==
               CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            Check("Sys_WaitForSignal", Sys_WaitForSignal(hReady_, 10000));
        const int64_t now = Now();
        Check("Evt_DequeueRequest", status);
        Check("Evt_EnqueueRequest", Evt_EnqueueRequest(hEvt_, hRequest));
        return static_cast<double>(now - offset_ - static_cast<int64_t>(info.ullTimestamp));
    }

  private:
    /// From the latch that came back fastest of many: it is known best when it happened.
    int64_t ClockOffset()
    {
        int64_t best = INT64_MAX;
        int64_t offset = 0;
        for (int i = 0; i < 200; ++i) {
            const uint32_t uiLatch = 1;
            uint64_t ullDevice = 0;
            const int64_t before = Now();
            Check("Cam_WriteReg", Cam_WriteReg(hCam_, s_timestampLatch, 1, &uiLatch));
            const int64_t after = Now();
            Check("Cam_ReadReg", Cam_ReadReg(hCam_, s_timestamp, 2, &ullDevice));
            if (after - before < best) {
                best = after - before;
                offset = before + best / 2 - static_cast<int64_t>(ullDevice);
            }
        }
        return offset;
    }

    CAM_HANDLE hEvt_ = 0, hReady_ = 0;
    std::vector<std::vector<unsigned char>> memory_;
    int64_t offset_ = 0;
};

void EventDelivery(benchmark::State &state)
{
    EventSource source;
    std::vector<double> latencies;
    for (auto _ : state)
        latencies.push_back(source.Deliver());
    std::sort(latencies.begin(), latencies.end());
    state.counters["p50"] = latencies[latencies.size() / 2] / 1000;
    state.counters["p99"] = latencies[latencies.size() * 99 / 100] / 1000;
}
BENCHMARK(EventDelivery)->UseRealTime()->Iterations(5000)->Repetitions(5)->ReportAggregatesOnly();

const bool s_median = Add({"event from the device's stamp to Evt_DequeueRequest, median",
                           [] { return Median("EventDelivery", "p50"); }, " us", Claim::Is::Shown, 0});
const bool s_worst =
    Add({"the same, 99th percentile", [] { return Median("EventDelivery", "p99"); }, " us", Claim::Is::Shown, 0});

} // namespace

} // namespace Orvi::Bench
