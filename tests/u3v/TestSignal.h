#pragma once
// A signal as applications have it.

#include "foundation/SignalRecord.h"

#include <ctime>

namespace Orvi::Test {

class TestSignal {
  public:
    TestSignal()
    {
        pthread_mutex_init(&record_.mutex, nullptr);
        pthread_cond_init(&record_.cond, nullptr);
        record_.magic = SignalRecord::validMagic;
    }
    ~TestSignal()
    {
        pthread_cond_destroy(&record_.cond);
        pthread_mutex_destroy(&record_.mutex);
    }
    TestSignal(const TestSignal &) = delete;
    TestSignal &operator=(const TestSignal &) = delete;

    void *Handle() { return &record_; }

    /// False when a minute passes without it.
    bool Wait()
    {
        timespec limit{};
        clock_gettime(CLOCK_REALTIME, &limit);
        limit.tv_sec += 60;
        pthread_mutex_lock(&record_.mutex);
        int result = 0;
        while (record_.signalled == 0 && result == 0)
            result = pthread_cond_timedwait(&record_.cond, &record_.mutex, &limit);
        record_.signalled = 0;
        pthread_mutex_unlock(&record_.mutex);
        return result == 0;
    }

  private:
    SignalRecord record_{};
};

} // namespace Orvi::Test
