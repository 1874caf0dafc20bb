// The lines that signals write. They do not follow the others: programs look for them as they are.

#include "tests/support/LogCapture.h"
#include "tests/support/StatusTable.h"
#include "tests/support/SystemCalls.h"
#include "tests/system/SignalMemory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

namespace Orvi::Testing {

using Lines = std::vector<std::string>;

namespace {

std::string Hex(CAM_HANDLE value)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

std::string CloseLine(CAM_HANDLE hSignal) { return "INFO ,EXIT: Sys_CloseSignal, hHandle=" + Hex(hSignal); }
std::string WaitLine(CAM_HANDLE hSignal, const char *milliseconds)
{
    return "INFO ,EXIT: Sys_WaitForSignal, hHandle=" + Hex(hSignal) + ", uiMillisecons=" + milliseconds;
}

} // namespace

/// Early returns leave the fault handler installed; each test puts back what was there.
class SignalLogTest : public ::testing::Test {
  protected:
    SignalLogTest() { Real::sigaction(SIGSEGV, nullptr, &before_); }
    ~SignalLogTest() override { Real::sigaction(SIGSEGV, &before_, nullptr); }

    CAM_HANDLE Create()
    {
        CAM_HANDLE hSignal = 0;
        EXPECT_EQ(Sys_CreateSignal(&hSignal), 0u);
        log.Take();
        return hSignal;
    }

    LogCapture log;

  private:
    struct sigaction before_;
};

TEST_F(SignalLogTest, Create)
{
    CAM_HANDLE hSignal = 0;
    EXPECT_EQ(Sys_CreateSignal(&hSignal), 0u);
    EXPECT_EQ(log.Take(),
              (Lines{"INFO ,ENTER: Sys_CreateSignal phHandle=" + Hex(reinterpret_cast<CAM_HANDLE>(&hSignal)),
                     "INFO ,EXIT: Sys_CreateSignal, *phHandle=" + Hex(hSignal)}));
    Sys_CloseSignal(hSignal);
}

TEST_F(SignalLogTest, CreateWithoutOutputReturnsAnotherStatusThanItLogs)
{
    EXPECT_EQ(Sys_CreateSignal(nullptr), 13u);
    EXPECT_EQ(log.Take(), (Lines{"INFO ,ENTER: Sys_CreateSignal phHandle=0x0",
                                 "ERROR,EXIT: Sys_CreateSignal(CAM_API_STS_UNSUCCESSFUL)"}));
}

TEST_F(SignalLogTest, Close)
{
    const CAM_HANDLE hSignal = Create();
    EXPECT_EQ(Sys_CloseSignal(hSignal), 0u);
    EXPECT_EQ(log.Take(), (Lines{CloseLine(hSignal), ExitLine(0, "Sys_CloseSignal")}));
}

TEST_F(SignalLogTest, CloseOfBadHandles)
{
    const FakeSignal fake(0x12345);
    EXPECT_EQ(Sys_CloseSignal(0), 13u);
    EXPECT_EQ(log.Take(), (Lines{"INFO ,EXIT: Sys_CloseSignal, hHandle=0x0", ExitLine(13, "Sys_CloseSignal")}));
    EXPECT_EQ(Sys_CloseSignal(fake.Handle()), 0xFFFFFFFFu);
    EXPECT_EQ(log.Take(), (Lines{CloseLine(fake.Handle()), ExitLine(0xFFFFFFFF, "Sys_CloseSignal")}));
    EXPECT_EQ(Sys_CloseSignal(wildHandle), 0xFFFFFFFFu);
    EXPECT_EQ(log.Take(), (Lines{CloseLine(wildHandle), ExitLine(0xFFFFFFFF, "Sys_CloseSignal")}));
}

TEST_F(SignalLogTest, Wait)
{
    const CAM_HANDLE hSignal = Create();
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 0), 18u);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(hSignal, "0"), ExitLine(18, "Sys_WaitForSignal")}));
    Sys_SetSignal(hSignal);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, 250), 0u);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(hSignal, "250"), ExitLine(0, "Sys_WaitForSignal")}));
    Sys_SetSignal(hSignal);
    EXPECT_EQ(Sys_WaitForSignal(hSignal, SYS_WAIT_INFINITE), 0u);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(hSignal, "-1"), ExitLine(0, "Sys_WaitForSignal")}));
    Sys_CloseSignal(hSignal);
}

TEST_F(SignalLogTest, WaitForBadHandles)
{
    const FakeSignal fake(0);
    EXPECT_EQ(Sys_WaitForSignal(0, 5), 13u);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(0, "5"), ExitLine(13, "Sys_WaitForSignal")}));
    EXPECT_EQ(Sys_WaitForSignal(fake.Handle(), 5), 0xFFFFFFFFu);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(fake.Handle(), "5"), ExitLine(0xFFFFFFFF, "Sys_WaitForSignal")}));
    EXPECT_EQ(Sys_WaitForSignal(wildHandle, 5), 0xFFFFFFFFu);
    EXPECT_EQ(log.Take(), (Lines{WaitLine(wildHandle, "5"), ExitLine(0xFFFFFFFF, "Sys_WaitForSignal")}));
}

TEST_F(SignalLogTest, SetAndResetAreSilentUnlessTheMarkIsBad)
{
    const CAM_HANDLE hSignal = Create();
    const FakeSignal fake(0x54320);
    for (CAM_API_STATUS (*call)(CAM_HANDLE) : {Sys_SetSignal, Sys_ResetSignal}) {
        EXPECT_EQ(call(hSignal), 0u);
        EXPECT_EQ(call(0), 13u);
        EXPECT_EQ(log.Take(), Lines{});
        EXPECT_EQ(call(fake.Handle()), 0xFFFFFFFFu);
        EXPECT_EQ(log.Take(), Lines{"ERROR,EXIT: Sys_WaitForSignal(CAM_API_STS_UNSUCCESSFUL)"});
    }
    Sys_CloseSignal(hSignal);
}

TEST_F(SignalLogTest, CloseOfASignalInUseFails)
{
    const CAM_HANDLE hSignal = Create();
    {
        const ScopedSystemCalls calls;
        calls->mutexDestroy = [](pthread_mutex_t *) { return EBUSY; };
        EXPECT_EQ(Sys_CloseSignal(hSignal), 0xFFFFFFFFu);
    }
    EXPECT_EQ(log.Take(), (Lines{CloseLine(hSignal), ExitLine(0xFFFFFFFF, "Sys_CloseSignal")}));
    EXPECT_EQ(RecordOf(hSignal).signalled, 1u);
    EXPECT_EQ(RecordOf(hSignal).magic, 0x54321u) << "it is alive still";
    EXPECT_EQ(Sys_CloseSignal(hSignal), 0u);
}

} // namespace Orvi::Testing
