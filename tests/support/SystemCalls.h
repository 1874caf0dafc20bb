#pragma once
// The system as the library sees it: a program that links this answers the library's calls itself where a test wants
// so, and passes all others on.

#include <ctime>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/time.h>

#include <csignal>
#include <pthread.h>

namespace Orvi::Testing {

/// Answers of the test's own; null passes the call on. They are plain functions because the first calls come before any
/// constructor has run.
struct SystemCalls {
    int (*statvfs)(const char *path, struct statvfs *facts);
    int (*stat)(const char *path, struct stat *facts);
    int (*mkdir)(const char *path, mode_t mode);
    int (*gettimeofday)(timeval *now);
    time_t (*time)();
    int (*usleep)(unsigned microseconds);
    int (*sched_yield)();
    void *(*dlopen)(const char *path, int mode);
    int (*dlclose)(void *library);
    int (*sigaction)(int signal, const struct sigaction *action, struct sigaction *previous);
    int (*mutexDestroy)(pthread_mutex_t *mutex); ///< instead of destroying it
    void (*mutexDestroyed)(pthread_mutex_t *mutex, int result);
    int (*timedWait)(const timespec *deadline); ///< instead of waiting for a condition until then
    void (*conditionWait)(int change);          ///< +1 before and -1 after a wait without limit, under its mutex
};
extern SystemCalls systemCalls;

/// The system's own calls.
namespace Real {
int stat(const char *path, struct stat *facts);
int statvfs(const char *path, struct statvfs *facts);
int sigaction(int signal, const struct sigaction *action, struct sigaction *previous);
void *dlopen(const char *path, int mode);
int dlclose(void *library);
int usleep(unsigned microseconds);
} // namespace Real

/// Puts everything back at the end of a test.
struct ScopedSystemCalls {
    ScopedSystemCalls() = default;
    ~ScopedSystemCalls() { systemCalls = {}; }
    ScopedSystemCalls(const ScopedSystemCalls &) = delete;
    ScopedSystemCalls &operator=(const ScopedSystemCalls &) = delete;

    SystemCalls *operator->() const { return &systemCalls; }
};

} // namespace Orvi::Testing
