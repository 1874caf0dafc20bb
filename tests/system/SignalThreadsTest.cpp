// Many threads at one signal: a set wakes one waiter, and none is lost.

#include "tests/support/SystemCalls.h"
#include "tests/system/SignalMemory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace Orvi::Testing {

namespace {

constexpr unsigned rounds = 100000;
constexpr unsigned waiters = 4;
constexpr CAM_API_STATUS timeout = 18;

/// Threads inside the wait itself. Counted while they hold the signal's mutex, so under it the number is exact.
std::atomic<unsigned> s_inside;

/// Waits for what only fails to come when the test has failed.
bool Eventually(const std::function<bool()> &condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::yield();
    }
    return true;
}

/// A signal with threads that wait for it again and again, until the end.
class Crowd {
  public:
    Crowd()
    {
        EXPECT_EQ(Sys_CreateSignal(&hSignal_), 0u);
        s_inside = 0;
        calls_->conditionWait = [](int change) { s_inside += static_cast<unsigned>(change); };
        for (unsigned i = 0; i < waiters; ++i)
            threads_.emplace_back([this] {
                while (!isOver_) {
                    EXPECT_EQ(Sys_WaitForSignal(hSignal_, SYS_WAIT_INFINITE), 0u);
                    ++woken_;
                }
                --left_;
            });
    }

    ~Crowd()
    {
        isOver_ = true;
        while (left_ != 0) {
            Sys_SetSignal(hSignal_);
            std::this_thread::yield();
        }
        for (std::thread &thread : threads_)
            thread.join();
        EXPECT_EQ(Sys_CloseSignal(hSignal_), 0u);
    }

    CAM_HANDLE Signal() const { return hSignal_; }
    unsigned Woken() const { return woken_; }

    bool IsSet() const
    {
        SignalRecord &record = RecordOf(hSignal_);
        pthread_mutex_lock(&record.mutex);
        const bool isSet = record.signalled != 0;
        pthread_mutex_unlock(&record.mutex);
        return isSet;
    }

    /// Nobody is on the way in or out.
    bool AllWait() const
    {
        SignalRecord &record = RecordOf(hSignal_);
        pthread_mutex_lock(&record.mutex);
        const bool allWait = s_inside == waiters;
        pthread_mutex_unlock(&record.mutex);
        return allWait;
    }

  private:
    ScopedSystemCalls calls_;
    CAM_HANDLE hSignal_ = 0;
    std::atomic<bool> isOver_ = false;
    std::atomic<unsigned> woken_ = 0;
    std::atomic<unsigned> left_ = waiters;
    std::vector<std::thread> threads_;
};

} // namespace

TEST(SignalThreadsTest, EachSetWakesExactlyOneOfManyWaiters)
{
    const Crowd crowd;
    ASSERT_TRUE(Eventually([&] { return crowd.AllWait(); }));
    for (unsigned round = 1; round <= rounds; ++round) {
        ASSERT_EQ(Sys_SetSignal(crowd.Signal()), 0u);
        ASSERT_TRUE(Eventually([&] { return crowd.Woken() >= round && crowd.AllWait(); })) << "lost: " << round;
        ASSERT_EQ(crowd.Woken(), round) << "woke more than one";
        ASSERT_FALSE(crowd.IsSet());
    }
}

TEST(SignalThreadsTest, NoSetIsLostWhileWaitersComeAndGo)
{
    const Crowd crowd;
    for (unsigned round = 1; round <= rounds; ++round) {
        ASSERT_EQ(Sys_SetSignal(crowd.Signal()), 0u);
        ASSERT_TRUE(Eventually([&] { return !crowd.IsSet(); })) << "lost: " << round;
    }
    EXPECT_GE(crowd.Woken(), 1u);
}

TEST(SignalThreadsTest, ResettingWakesNobody)
{
    CAM_HANDLE hSignal = 0;
    ASSERT_EQ(Sys_CreateSignal(&hSignal), 0u);
    std::atomic<bool> isBack = false;
    std::thread waiter([&] {
        EXPECT_EQ(Sys_WaitForSignal(hSignal, SYS_WAIT_INFINITE), 0u);
        isBack = true;
    });
    for (int i = 0; i < 10000; ++i)
        EXPECT_EQ(Sys_ResetSignal(hSignal), 0u);
    EXPECT_FALSE(isBack);
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    waiter.join();
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), timeout);
    EXPECT_EQ(Sys_CloseSignal(hSignal), 0u);
}

} // namespace Orvi::Testing
