// How long it takes from setting a signal to the other thread's going on, against a condition variable of the standard
// library in the same run. Both are measured there and back, so that one thread keeps the time.

#include "Claims.h"

#include "OrviCamApi.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Orvi::Bench {

namespace {

/// The library's signal.
class Signal {
  public:
    Signal() { Sys_CreateSignal(&handle_); }
    Signal(const Signal &) = delete;
    Signal &operator=(const Signal &) = delete;
    ~Signal() { Sys_CloseSignal(handle_); }

    void Set() { Sys_SetSignal(handle_); }
    void Wait() { Sys_WaitForSignal(handle_, SYS_WAIT_INFINITE); }

  private:
    CAM_HANDLE handle_ = 0;
};

/// The peer: what a careful program would write itself.
class Condition {
  public:
    void Set()
    {
        const std::lock_guard lock(mutex_);
        set_ = true;
        condition_.notify_one();
    }
    void Wait()
    {
        std::unique_lock lock(mutex_);
        condition_.wait(lock, [this] { return set_; });
        set_ = false;
    }

  private:
    std::mutex mutex_;
    std::condition_variable condition_;
    bool set_ = false;
};

template <class Event>
void ThereAndBack(benchmark::State &state)
{
    Event there, back;
    std::atomic<bool> stop = false;
    std::thread other([&] {
        for (;;) {
            there.Wait();
            if (stop)
                return;
            back.Set();
        }
    });
    for (auto _ : state) {
        there.Set();
        back.Wait();
    }
    stop = true;
    there.Set();
    other.join();
}

void SignalThereAndBack(benchmark::State &state) { ThereAndBack<Signal>(state); }
BENCHMARK(SignalThereAndBack)->UseRealTime()->Repetitions(15)->ReportAggregatesOnly();

void ConditionThereAndBack(benchmark::State &state) { ThereAndBack<Condition>(state); }
BENCHMARK(ConditionThereAndBack)->UseRealTime()->Repetitions(15)->ReportAggregatesOnly();

const bool s_latency =
    Add({"set-to-wake of a signal, of a std::condition_variable's",
         [] { return Median("SignalThereAndBack", "wall") / Median("ConditionThereAndBack", "wall"); }, "",
         Claim::Is::AtMost, 1.2});

} // namespace

} // namespace Orvi::Bench
