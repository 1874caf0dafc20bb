// The one wait for the condition: until when, and what its outcomes become.

#include "tests/support/SystemCalls.h"
#include "tests/system/SignalMemory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

namespace Orvi::Testing {

namespace {

timeval s_now;
int s_outcome;
uint32_t s_flagAfter; ///< as another thread leaves it during the wait
SignalRecord *s_record;
std::vector<timespec> s_deadlines;

int NoteDeadline(const timespec *deadline)
{
    s_deadlines.push_back(*deadline);
    s_record->signalled = s_flagAfter;
    return s_outcome;
}

} // namespace

class SignalDeadlineTest : public ::testing::Test {
  protected:
    SignalDeadlineTest()
    {
        EXPECT_EQ(Sys_CreateSignal(&hSignal), 0u);
        s_record = &RecordOf(hSignal);
        s_deadlines.clear();
        s_outcome = ETIMEDOUT;
        s_flagAfter = 0;
        s_now = {100, 0};
        calls->gettimeofday = [](timeval *now) {
            *now = s_now;
            return 0;
        };
        calls->timedWait = NoteDeadline;
    }
    ~SignalDeadlineTest() override { EXPECT_EQ(Sys_CloseSignal(hSignal), 0u); }

    ScopedSystemCalls calls;
    CAM_HANDLE hSignal = 0;
};

struct DeadlineRow {
    timeval now;
    uint32_t milliseconds;
    time_t seconds;
    long nanoseconds;
};

TEST_F(SignalDeadlineTest, IsTheTimeOfDayPlusTheLimit)
{
    // clang-format off
    constexpr DeadlineRow rows[] = {
        {{100, 0},      0,          100,     0},
        {{100, 999999}, 0,          100,     999999000},
        {{100, 999999}, 1,          101,     999000},
        {{100, 0},      999,        100,     999000000},
        {{100, 1000},   999,        101,     0},
        {{100, 0},      1000,       101,     0},
        {{100, 500000}, 2500,       103,     0},
        {{100, 0},      0xFFFFFFFE, 4295067, 294000000},
        {{0x100000000, 999999}, 0xFFFFFFFE, 0x100000000 + 4294968, 293999000},
    };
    // clang-format on
    for (const DeadlineRow &row : rows) {
        s_now = row.now;
        EXPECT_EQ(Sys_WaitForSignal(hSignal, row.milliseconds), 18u);
        ASSERT_EQ(s_deadlines.size(), 1u) << "the wait is done once";
        EXPECT_EQ(s_deadlines[0].tv_sec, row.seconds) << row.milliseconds;
        EXPECT_EQ(s_deadlines[0].tv_nsec, row.nanoseconds) << row.milliseconds;
        s_deadlines.clear();
    }
}

struct OutcomeRow {
    int outcome;
    uint32_t flagAfter;
    CAM_API_STATUS result;
};

TEST_F(SignalDeadlineTest, OutcomesOfTheWait)
{
    constexpr OutcomeRow rows[] = {
        {0, 1, 0},          {ETIMEDOUT, 1, 0},       {EINVAL, 1, 0}, // the flag decides
        {0, 0, 0},                                                   // woken without the flag: success all the same
        {ETIMEDOUT, 0, 18}, {EINVAL, 0, 0xFFFFFFFF}, {EPERM, 0, 0xFFFFFFFF},
    };
    for (const OutcomeRow &row : rows) {
        s_outcome = row.outcome;
        s_flagAfter = row.flagAfter;
        EXPECT_EQ(Sys_WaitForSignal(hSignal, 5), row.result) << row.outcome << ", flag " << row.flagAfter;
        EXPECT_EQ(RecordOf(hSignal).signalled, 0u) << "consumed";
        EXPECT_EQ(pthread_mutex_trylock(&RecordOf(hSignal).mutex), 0) << "unlocked";
        pthread_mutex_unlock(&RecordOf(hSignal).mutex);
    }
}

TEST_F(SignalDeadlineTest, SetSignalIsTakenWithoutAWait)
{
    EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 5), 0u);
    EXPECT_TRUE(s_deadlines.empty());
}

TEST_F(SignalDeadlineTest, ResetLetsGoOfTheMutexUntilNow)
{
    s_now = {123, 456789};
    for (const int outcome : {ETIMEDOUT, 0, EINVAL}) {
        s_outcome = outcome;
        EXPECT_EQ(Sys_SetSignal(hSignal), 0u);
        EXPECT_EQ(Sys_ResetSignal(hSignal), 0u);
        EXPECT_EQ(RecordOf(hSignal).signalled, 0u);
        ASSERT_EQ(s_deadlines.size(), 1u);
        EXPECT_EQ(s_deadlines[0].tv_sec, 123);
        EXPECT_EQ(s_deadlines[0].tv_nsec, 456789000);
        s_deadlines.clear();
    }
}

} // namespace Orvi::Testing
