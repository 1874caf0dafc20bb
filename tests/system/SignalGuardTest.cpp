// The fault guard of closing and waiting: bad handles answer instead of ending the process, and the handler that
// catches them stays installed on the early returns.

#include "tests/support/ChildProcess.h"
#include "tests/support/SystemCalls.h"
#include "tests/system/SignalMemory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstring>

#include <sys/mman.h>
#include <sys/wait.h>

namespace Orvi {
void UNI_SigHandler(int, siginfo_t *, void *);
extern sigjmp_buf g_JumpBuffer;
} // namespace Orvi

namespace Orvi::Testing {

namespace {

CAM_API_STATUS Wait(CAM_HANDLE hSignal) { return Sys_WaitForSignal(hSignal, 0); }

struct GuardedCallRow {
    const char *name;
    CAM_API_STATUS (*call)(CAM_HANDLE);
};
constexpr GuardedCallRow s_calls[] = {{"close", Sys_CloseSignal}, {"wait", Wait}};

void OwnHandler(int, siginfo_t *, void *) { _exit(99); }

/// The process's own handler, with a mask and flags that must come back.
void InstallOwnHandler()
{
    struct sigaction own = {};
    own.sa_sigaction = OwnHandler;
    own.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigemptyset(&own.sa_mask);
    sigaddset(&own.sa_mask, SIGUSR1);
    ASSERT_EQ(sigaction(SIGSEGV, &own, nullptr), 0);
}

struct sigaction Installed()
{
    struct sigaction now = {};
    EXPECT_EQ(sigaction(SIGSEGV, nullptr, &now), 0);
    return now;
}

void ExpectOwnHandler()
{
    const struct sigaction now = Installed();
    EXPECT_EQ(now.sa_sigaction, &OwnHandler);
    EXPECT_EQ(now.sa_flags & ~0x04000000, SA_SIGINFO | SA_NODEFER);
    EXPECT_TRUE(sigismember(&now.sa_mask, SIGUSR1));
}

void ExpectLibrarysHandler()
{
    const struct sigaction now = Installed();
    EXPECT_EQ(now.sa_sigaction, &UNI_SigHandler);
    EXPECT_EQ(now.sa_flags & ~0x04000000, SA_SIGINFO | SA_RESTART);
    for (int signal = 1; signal < 32; ++signal)
        EXPECT_FALSE(sigismember(&now.sa_mask, signal)) << signal;
}

CAM_HANDLE Create()
{
    CAM_HANDLE hSignal = 0;
    EXPECT_EQ(Sys_CreateSignal(&hSignal), 0u);
    return hSignal;
}

/// A page that was a signal's once and is gone.
CAM_HANDLE UnmappedHandle()
{
    void *page = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    munmap(page, 4096);
    return reinterpret_cast<CAM_HANDLE>(page);
}

} // namespace

class SignalGuardTest : public ::testing::TestWithParam<GuardedCallRow> {
  protected:
    CAM_API_STATUS Call(CAM_HANDLE hSignal) const { return GetParam().call(hSignal); }
};

INSTANTIATE_TEST_SUITE_P(Signal, SignalGuardTest, ::testing::ValuesIn(s_calls),
                         [](const auto &instance) { return std::string(instance.param.name); });

TEST_P(SignalGuardTest, GoodCallRestoresTheHandler)
{
    EXPECT_TRUE(PassesInChild([&] {
        InstallOwnHandler();
        const CAM_HANDLE hSignal = Create();
        Sys_SetSignal(hSignal);
        EXPECT_EQ(Call(hSignal), 0u);
        ExpectOwnHandler();
    }));
}

TEST_P(SignalGuardTest, WildHandleAnswersAndRestoresTheHandler)
{
    EXPECT_TRUE(PassesInChild([&] {
        InstallOwnHandler();
        const CAM_HANDLE unmapped = UnmappedHandle();
        for (const CAM_HANDLE wild : {CAM_HANDLE{1}, wildHandle, unmapped, ~CAM_HANDLE{0}, ~CAM_HANDLE{0} - 4096,
                                      CAM_HANDLE{0x4142434445464748}, CAM_HANDLE{0x8000000000000000}}) {
            EXPECT_EQ(Call(wild), 0xFFFFFFFFu) << std::hex << wild;
            ExpectOwnHandler();
        }
        sigset_t mask;
        sigprocmask(SIG_SETMASK, nullptr, &mask);
        EXPECT_FALSE(sigismember(&mask, SIGSEGV)) << "the fault's mask must not stay";
    }));
}

TEST_P(SignalGuardTest, ProtectedMemoryAnswersToo)
{
    EXPECT_TRUE(PassesInChild([&] {
        void *page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        EXPECT_EQ(Call(reinterpret_cast<CAM_HANDLE>(page)), 0xFFFFFFFFu);
        EXPECT_EQ(Call(reinterpret_cast<CAM_HANDLE>(page)), 0xFFFFFFFFu) << "as often as one likes";
        munmap(page, 4096);
    }));
}

TEST_P(SignalGuardTest, UnalignedMemoryIsLookedAtSafely)
{
    EXPECT_TRUE(PassesInChild([&] {
        alignas(16) const unsigned char bytes[256] = {};
        for (CAM_HANDLE offset = 0; offset < 16; ++offset)
            EXPECT_EQ(Call(reinterpret_cast<CAM_HANDLE>(bytes) + offset), 0xFFFFFFFFu);
    }));
}

TEST_P(SignalGuardTest, NullHandleLeavesTheLibrarysHandler)
{
    EXPECT_TRUE(PassesInChild([&] {
        InstallOwnHandler();
        EXPECT_EQ(Call(0), 13u);
        ExpectLibrarysHandler();
    }));
}

TEST_P(SignalGuardTest, BadMarkLeavesTheLibrarysHandler)
{
    for (const uint32_t magic : {0u, 0x54320u, 0x54322u, 0x12345432u, 0xFFFFFFFFu}) {
        EXPECT_TRUE(PassesInChild([&] {
            InstallOwnHandler();
            const FakeSignal fake(magic);
            EXPECT_EQ(Call(fake.Handle()), 0xFFFFFFFFu);
            ExpectLibrarysHandler();
        }));
    }
}

TEST_P(SignalGuardTest, LaterGoodCallPutsBackTheLibrarysHandler)
{
    EXPECT_TRUE(PassesInChild([&] {
        InstallOwnHandler();
        EXPECT_EQ(Call(0), 13u);
        const CAM_HANDLE hSignal = Create();
        Sys_SetSignal(hSignal);
        EXPECT_EQ(Call(hSignal), 0u);
        ExpectLibrarysHandler();
    }));
}

TEST_P(SignalGuardTest, FreedHandleAnswers)
{
    EXPECT_TRUE(PassesInChild([&] {
        const CAM_HANDLE hSignal = Create();
        EXPECT_EQ(Sys_CloseSignal(hSignal), 0u);
        EXPECT_EQ(Call(hSignal), 0xFFFFFFFFu);
    }));
}

TEST_P(SignalGuardTest, GuardThatCannotBeInstalledFailsTheCall)
{
    EXPECT_TRUE(PassesInChild([&] {
        const CAM_HANDLE hSignal = Create();
        Sys_SetSignal(hSignal);
        systemCalls.sigaction = [](int, const struct sigaction *, struct sigaction *) { return -1; };
        EXPECT_EQ(Call(hSignal), 0xFFFFFFFFu);
        EXPECT_EQ(Call(0), 0xFFFFFFFFu) << "before the handle is looked at";
        systemCalls.sigaction = nullptr;
        EXPECT_EQ(Call(hSignal), 0u);
    }));
}

TEST_P(SignalGuardTest, GuardThatCannotBeRemovedFailsTheCall)
{
    EXPECT_TRUE(PassesInChild([&] {
        const CAM_HANDLE hSignal = Create();
        Sys_SetSignal(hSignal);
        systemCalls.sigaction = [](int signal, const struct sigaction *action, struct sigaction *previous) {
            return previous == nullptr ? -1 : Real::sigaction(signal, action, previous);
        };
        EXPECT_EQ(Call(hSignal), 0xFFFFFFFFu);
    }));
}

TEST(SignalGuard, CloseThatFailsLeavesTheLibrarysHandler)
{
    EXPECT_TRUE(PassesInChild([] {
        InstallOwnHandler();
        const CAM_HANDLE hSignal = Create();
        systemCalls.mutexDestroy = [](pthread_mutex_t *) { return EBUSY; };
        EXPECT_EQ(Sys_CloseSignal(hSignal), 0xFFFFFFFFu);
        ExpectLibrarysHandler();
    }));
}

TEST(SignalGuard, TimeoutRestoresTheHandler)
{
    EXPECT_TRUE(PassesInChild([] {
        InstallOwnHandler();
        const CAM_HANDLE hSignal = Create();
        EXPECT_EQ(Wait(hSignal), 18u);
        ExpectOwnHandler();
    }));
}

TEST(SignalGuard, SettingAndResettingAreNotGuarded)
{
    for (CAM_API_STATUS (*call)(CAM_HANDLE) : {Sys_SetSignal, Sys_ResetSignal}) {
        const int status = WaitStatusOfChild([call] {
            InstallOwnHandler();
            call(wildHandle);
        });
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 99) << "the fault is the process's own";
    }
}

TEST(SignalGuard, HandlerJumpsWithOne)
{
    EXPECT_TRUE(PassesInChild([] {
        const int value = sigsetjmp(g_JumpBuffer, 1);
        if (value == 0)
            UNI_SigHandler(SIGSEGV, nullptr, nullptr);
        EXPECT_EQ(value, 1);
    }));
}

} // namespace Orvi::Testing
