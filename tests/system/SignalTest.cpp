// Signals: what setting, resetting and waiting do.

#include "tests/system/SignalMemory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <sys/time.h>

namespace Orvi::Testing {

class SignalTest : public ::testing::Test {
  protected:
    SignalTest() { EXPECT_EQ(Sys_CreateSignal(&hSignal), 0u); }
    ~SignalTest() override { EXPECT_EQ(Sys_CloseSignal(hSignal), 0u); }

    static constexpr CAM_API_STATUS timeout = 18;
    /// Never reached unless the test fails.
    static constexpr uint32_t generous = 60000;

    CAM_HANDLE hSignal = 0;
};

TEST_F(SignalTest, RecordIsCleanAndMarked)
{
    const SignalRecord &record = RecordOf(hSignal);
    EXPECT_EQ(record.signalled, 0u);
    EXPECT_EQ(record.magic, 0x54321u);
}

TEST_F(SignalTest, StartsUnset) { EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), timeout); }

TEST_F(SignalTest, WaitConsumesIt)
{
    for (const uint32_t limit : {0u, 10u, generous, SYS_WAIT_INFINITE}) {
        EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
        EXPECT_EQ(RecordOf(hSignal).signalled, 1u);
        EXPECT_EQ(Sys_WaitForSignal(hSignal, limit), 0u);
        EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), timeout);
    }
}

TEST_F(SignalTest, SettingTwiceIsSettingOnce)
{
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), timeout);
}

TEST_F(SignalTest, ResetTakesItBack)
{
    EXPECT_EQ(Sys_ResetSignal(hSignal), 0u) << "an unset signal may be reset";
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_ResetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 10), timeout);
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), 0u);
}

TEST_F(SignalTest, TimeoutIsNeverEarly)
{
    using Clock = std::chrono::system_clock;
    for (const uint32_t milliseconds : {1u, 10u, 120u, 1100u}) {
        const Clock::time_point start = Clock::now();
        EXPECT_EQ(Sys_WaitForSignal(hSignal, milliseconds), timeout);
        EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(milliseconds) - std::chrono::microseconds(1));
    }
}

TEST_F(SignalTest, WaiterIsWokenFromAnotherThread)
{
    for (const uint32_t limit : {SYS_WAIT_INFINITE, generous}) {
        CAM_API_STATUS result = 99;
        std::thread waiter([&] { result = Sys_WaitForSignal(hSignal, limit); });
        EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
        waiter.join();
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), timeout);
    }
}

TEST_F(SignalTest, TransportSetsItThroughTheRecord)
{
    CAM_API_STATUS result = 99;
    std::thread waiter([&] { result = Sys_WaitForSignal(hSignal, SYS_WAIT_INFINITE); });
    SignalRecord &record = RecordOf(hSignal);
    pthread_mutex_lock(&record.mutex);
    record.signalled = 1;
    pthread_cond_signal(&record.cond);
    pthread_mutex_unlock(&record.mutex);
    waiter.join();
    EXPECT_EQ(result, 0u);
}

TEST_F(SignalTest, SignalsAreIndependent)
{
    CAM_HANDLE hOther = 0;
    EXPECT_EQ(Sys_CreateSignal(&hOther), 0u);
    EXPECT_NE(hOther, hSignal);
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hOther, 0), timeout);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), 0u);
    EXPECT_EQ(Sys_CloseSignal(hOther), 0u);
}

TEST_F(SignalTest, SetSignalMayBeClosed)
{
    CAM_HANDLE hOther = 0;
    EXPECT_EQ(Sys_CreateSignal(&hOther), 0u);
    EXPECT_EQ(Sys_SetSignal(hOther), 0u);
    EXPECT_EQ(Sys_CloseSignal(hOther), 0u);
}

TEST_F(SignalTest, NullHandlesAndOutputs)
{
    EXPECT_EQ(Sys_CreateSignal(nullptr), 13u);
    EXPECT_EQ(Sys_SetSignal(0), 13u);
    EXPECT_EQ(Sys_ResetSignal(0), 13u);
}

} // namespace Orvi::Testing
