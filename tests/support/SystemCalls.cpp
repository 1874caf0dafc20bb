#include "tests/support/SystemCalls.h"

#include <dlfcn.h>
#include <sched.h>
#include <unistd.h>

namespace Orvi::Testing {

constinit SystemCalls systemCalls = {};

namespace {

template <class Function>
Function *Next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

// clang-format off
#define NEXT(name, type) (*[] { static type *const next = Next<type>(#name); return next; }())
// clang-format on

namespace Real {
int stat(const char *path, struct stat *facts) { return NEXT(stat, int(const char *, struct stat *))(path, facts); }
int statvfs(const char *path, struct statvfs *facts)
{
    return NEXT(statvfs, int(const char *, struct statvfs *))(path, facts);
}
int sigaction(int signal, const struct sigaction *action, struct sigaction *previous)
{
    return NEXT(sigaction, int(int, const struct sigaction *, struct sigaction *))(signal, action, previous);
}
void *dlopen(const char *path, int mode) { return NEXT(dlopen, void *(const char *, int))(path, mode); }
int usleep(unsigned microseconds) { return NEXT(usleep, int(unsigned))(microseconds); }
} // namespace Real

} // namespace Orvi::Testing

using Orvi::Testing::Next;
using Orvi::Testing::systemCalls;
namespace Real = Orvi::Testing::Real;

extern "C" {

int statvfs(const char *__restrict path, struct statvfs *__restrict facts) noexcept
{
    return systemCalls.statvfs ? systemCalls.statvfs(path, facts) : Real::statvfs(path, facts);
}

int stat(const char *__restrict path, struct stat *__restrict facts) noexcept
{
    return systemCalls.stat ? systemCalls.stat(path, facts) : Real::stat(path, facts);
}

int mkdir(const char *path, mode_t mode) noexcept
{
    return systemCalls.mkdir ? systemCalls.mkdir(path, mode) : NEXT(mkdir, int(const char *, mode_t))(path, mode);
}

int gettimeofday(timeval *__restrict now, void *__restrict zone) noexcept
{
    return systemCalls.gettimeofday ? systemCalls.gettimeofday(now)
                                    : NEXT(gettimeofday, int(timeval *, void *))(now, zone);
}

time_t time(time_t *now) noexcept
{
    if (!systemCalls.time)
        return NEXT(time, time_t(time_t *))(now);
    const time_t answer = systemCalls.time();
    if (now)
        *now = answer;
    return answer;
}

int usleep(useconds_t microseconds)
{
    return systemCalls.usleep ? systemCalls.usleep(microseconds) : Real::usleep(microseconds);
}

int sched_yield() noexcept
{
    return systemCalls.sched_yield ? systemCalls.sched_yield() : NEXT(sched_yield, int())();
}

void *dlopen(const char *path, int mode) noexcept
{
    return systemCalls.dlopen ? systemCalls.dlopen(path, mode) : Real::dlopen(path, mode);
}

int sigaction(int signal, const struct sigaction *__restrict action, struct sigaction *__restrict previous) noexcept
{
    return systemCalls.sigaction ? systemCalls.sigaction(signal, action, previous)
                                 : Real::sigaction(signal, action, previous);
}

int pthread_mutex_destroy(pthread_mutex_t *mutex) noexcept
{
    const int result = NEXT(pthread_mutex_destroy, int(pthread_mutex_t *))(mutex);
    if (systemCalls.mutexDestroyed)
        systemCalls.mutexDestroyed(mutex, result);
    return result;
}

} // extern "C"
