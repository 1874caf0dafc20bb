// Signals: auto-reset events for the application's threads and for the transport's completions.
//
// Their log lines do not follow the frame, and programs look for them as they are: the lines that begin a close or a
// wait say "EXIT:", setting and resetting write no line unless the handle is bad, and then one that names the wait.

#include "foundation/SignalRecord.h"
#include "log/UNI_Log.h"
#include "transport/LogText.h"

#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <new>

#include <sys/time.h>

namespace Orvi {

// One for the process: two threads that hand in bad handles at the same time are not protected from each other.
ORVI_EXPORT sigjmp_buf g_JumpBuffer;

ORVI_EXPORT void UNI_SigHandler(int, siginfo_t *, void *) { siglongjmp(g_JumpBuffer, 1); }

namespace {

constexpr char s_close[] = "Sys_CloseSignal";
constexpr char s_wait[] = "Sys_WaitForSignal";

template <class Text>
void Log(CAM_API_STATUS status, const Text &text)
{
    if (!g_bUniLogInit)
        return;
    LogWriter line;
    text(line);
    Uni_OutLog(status, line);
}

CAM_API_STATUS LogExit(const char *name, CAM_API_STATUS status)
{
    Log(status, [&](LogWriter &line) { line.Format("EXIT: %s", name); });
    return status;
}

SignalRecord *RecordOf(CAM_HANDLE hHandle) { return reinterpret_cast<SignalRecord *>(hHandle); }

/// Looks at memory that may be anything: freed, never mapped, not aligned.
[[gnu::noinline]] __attribute__((no_sanitize("address", "thread", "undefined"))) bool HasMagic(CAM_HANDLE hHandle)
{
    const auto *magic = reinterpret_cast<const volatile unsigned char *>(hHandle) + offsetof(SignalRecord, magic);
    uint32_t value = 0;
    for (unsigned i = 0; i < sizeof value; ++i)
        value |= static_cast<uint32_t>(magic[i]) << (8 * i);
    return value == SignalRecord::validMagic;
}

timespec Deadline(uint32_t uiMillisecons)
{
    timeval now;
    gettimeofday(&now, nullptr);
    const long nanoseconds = now.tv_usec * 1000L + static_cast<long>(uiMillisecons % 1000) * 1000000L;
    timespec deadline;
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(uiMillisecons / 1000) + nanoseconds / 1000000000L;
    deadline.tv_nsec = nanoseconds % 1000000000L;
    return deadline;
}

/// One wait, without a loop: a wake-up without the flag counts as success.
CAM_API_STATUS Wait(SignalRecord &signal, uint32_t uiMillisecons)
{
    pthread_mutex_lock(&signal.mutex);
    int result = 0;
    if (signal.signalled == 0) {
        if (uiMillisecons == SYS_WAIT_INFINITE) {
            result = pthread_cond_wait(&signal.cond, &signal.mutex);
        } else {
            const timespec deadline = Deadline(uiMillisecons);
            result = pthread_cond_timedwait(&signal.cond, &signal.mutex, &deadline);
        }
    }
    if (signal.signalled == 1) {
        signal.signalled = 0;
        result = 0;
    }
    pthread_mutex_unlock(&signal.mutex);
    if (result == 0)
        return CAM_API_STS_SUCCESS;
    return result == ETIMEDOUT ? CAM_API_STS_TIMEOUT : CAM_API_STS_UNSUCCESSFUL;
}

bool Destroy(SignalRecord &signal)
{
    signal.signalled = 1;
    if (pthread_mutex_destroy(&signal.mutex) != 0 || pthread_cond_destroy(&signal.cond) != 0)
        return false;
    // A plain store just before the record is freed would be optimised away.
    const_cast<volatile uint32_t &>(signal.magic) = 0;
    delete &signal;
    return true;
}

/// Catches the fault of a first look at a bad handle. Nothing with a destructor may live in the functions between
/// Install() and Restore(): the handler jumps over them.
struct FaultGuard {
    struct sigaction previous;

    bool Install()
    {
        struct sigaction action = {};
        action.sa_sigaction = &UNI_SigHandler;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        sigemptyset(&action.sa_mask);
        return sigaction(SIGSEGV, &action, &previous) == 0;
    }

    bool Restore() const { return sigaction(SIGSEGV, &previous, nullptr) == 0; }
};

/// Runs work(signal, status) on a handle that may be wild; the work answers false when it has failed. The returns
/// before Restore() leave the fault handler installed: programs have come to rely on what then catches their faults.
template <class Work>
CAM_API_STATUS GuardedSignalCall(const char *name, CAM_HANDLE hHandle, const Work &work)
{
    FaultGuard guard;
    if (!guard.Install())
        return LogExit(name, CAM_API_STS_UNSUCCESSFUL);
    if (sigsetjmp(g_JumpBuffer, 1) != 0) {
        guard.Restore();
        return LogExit(name, CAM_API_STS_UNSUCCESSFUL);
    }
    if (hHandle == 0)
        return LogExit(name, CAM_API_STS_INVALID_PARAMETER);
    CAM_API_STATUS status = CAM_API_STS_SUCCESS;
    if (!HasMagic(hHandle) || !work(*RecordOf(hHandle), status))
        return LogExit(name, CAM_API_STS_UNSUCCESSFUL);
    if (!guard.Restore())
        return LogExit(name, CAM_API_STS_UNSUCCESSFUL);
    return LogExit(name, status);
}

template <class Change>
CAM_API_STATUS ChangeSignal(CAM_HANDLE hHandle, const Change &change)
{
    if (hHandle == 0)
        return CAM_API_STS_INVALID_PARAMETER;
    if (!HasMagic(hHandle))
        return LogExit(s_wait, CAM_API_STS_UNSUCCESSFUL);
    SignalRecord &signal = *RecordOf(hHandle);
    pthread_mutex_lock(&signal.mutex);
    change(signal);
    pthread_mutex_unlock(&signal.mutex);
    return CAM_API_STS_SUCCESS;
}

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Sys_CreateSignal(CAM_HANDLE *phHandle)
{
    Log(CAM_API_STS_SUCCESS,
        [&](LogWriter &line) { line.Format("ENTER: Sys_CreateSignal phHandle=0x%llx", phHandle); });
    if (phHandle == nullptr) {
        LogExit(__func__, CAM_API_STS_UNSUCCESSFUL); // logged so, returned otherwise
        return CAM_API_STS_INVALID_PARAMETER;
    }
    auto *signal = new (std::nothrow) SignalRecord();
    if (signal == nullptr)
        return LogExit(__func__, CAM_API_STS_NO_MEMORY);
    pthread_mutex_init(&signal->mutex, nullptr);
    pthread_cond_init(&signal->cond, nullptr);
    signal->magic = SignalRecord::validMagic;
    *phHandle = reinterpret_cast<CAM_HANDLE>(signal);
    Log(CAM_API_STS_SUCCESS,
        [&](LogWriter &line) { line.Format("EXIT: Sys_CreateSignal, *phHandle=0x%llx", *phHandle); });
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS Sys_CloseSignal(CAM_HANDLE hHandle)
{
    Log(CAM_API_STS_SUCCESS, [&](LogWriter &line) { line.Format("EXIT: Sys_CloseSignal, hHandle=0x%llx", hHandle); });
    return GuardedSignalCall(s_close, hHandle, [](SignalRecord &signal, CAM_API_STATUS &) { return Destroy(signal); });
}

CAM_API_STATUS Sys_WaitForSignal(CAM_HANDLE hHandle, uint32_t uiMillisecons)
{
    Log(CAM_API_STS_SUCCESS, [&](LogWriter &line) {
        line.Format("EXIT: Sys_WaitForSignal, hHandle=0x%llx, uiMillisecons=%d", hHandle, uiMillisecons);
    });
    return GuardedSignalCall(s_wait, hHandle, [uiMillisecons](SignalRecord &signal, CAM_API_STATUS &status) {
        status = Wait(signal, uiMillisecons);
        return true;
    });
}

CAM_API_STATUS Sys_SetSignal(CAM_HANDLE hHandle)
{
    return ChangeSignal(hHandle, [](SignalRecord &signal) {
        signal.signalled = 1;
        pthread_cond_signal(&signal.cond);
    });
}

CAM_API_STATUS Sys_ResetSignal(CAM_HANDLE hHandle)
{
    return ChangeSignal(hHandle, [](SignalRecord &signal) {
        signal.signalled = 0;
        // A wait that ends at once lets go of the mutex for a moment, so that whoever is waiting for it comes in.
        const timespec now = Deadline(0);
        pthread_cond_timedwait(&signal.cond, &signal.mutex, &now);
    });
}
