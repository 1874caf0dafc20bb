// How long it takes from setting a signal to the other thread's going on, against a condition variable of the standard
// library in the same run. Both are measured there and back, so that one thread keeps the time, on one processor.

#include "Claims.h"
#include "Turns.h"

#include "OrviCamApi.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <sched.h>

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

/// Another thread that answers: set, it sets back.
template <class Event>
class Answerer {
  public:
    Answerer() = default;
    Answerer(const Answerer &) = delete;
    Answerer &operator=(const Answerer &) = delete;
    ~Answerer()
    {
        stop_ = true;
        there_.Set();
        thread_.join();
    }

    void ThereAndBack()
    {
        there_.Set();
        back_.Wait();
    }

  private:
    void Run()
    {
        for (;;) {
            there_.Wait();
            if (stop_)
                return;
            back_.Set();
        }
    }

    Event there_, back_;
    std::atomic<bool> stop_ = false;
    std::thread thread_{[this] { Run(); }};
};

/// Keeps this thread, and those that it starts, on one processor. Waking an idle one takes many times what is compared
/// here, and the two would have to do it or not as the system happens to place their threads.
class OneProcessor {
  public:
    OneProcessor()
    {
        sched_getaffinity(0, sizeof before_, &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    OneProcessor(const OneProcessor &) = delete;
    OneProcessor &operator=(const OneProcessor &) = delete;
    ~OneProcessor() { sched_setaffinity(0, sizeof before_, &before_); }

  private:
    cpu_set_t before_;
};

void ThereAndBack(benchmark::State &state)
{
    const OneProcessor here;
    Answerer<Signal> signal;
    Answerer<Condition> condition;
    Turns turns(20);
    turns.Add([&] { signal.ThereAndBack(); });
    turns.Add([&] { condition.ThereAndBack(); });
    for (auto _ : state)
        turns.Round();
    state.counters["signal"] = turns.MedianTime(0);
    state.counters["condition"] = turns.MedianTime(1);
    state.counters["ratio"] = turns.Median([](const Turns::Times &times) { return times[0] / times[1]; });
}
BENCHMARK(ThereAndBack)->Iterations(500)->Repetitions(7)->ReportAggregatesOnly();

const bool s_latency = Add({"set-to-wake of a signal, of a `std::condition_variable`'s",
                            [] { return Median("ThereAndBack", "ratio"); }, "", Claim::Is::AtMost, 1.2});

} // namespace

} // namespace Orvi::Bench
