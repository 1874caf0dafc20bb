#include "tests/support/SystemCalls.h"

#include <atomic>

#include <dlfcn.h>
#include <sched.h>
#include <unistd.h>

namespace Orvi::Testing {

constinit SystemCalls systemCalls = {};

namespace {

/// The next definition of a function behind this program's. Found at its first call, which may be before constructors.
template <class Function>
class Next;

template <class Result, class... Parameters>
class Next<Result(Parameters...)> {
  public:
    constexpr explicit Next(const char *name) : name_(name) {}

    Result operator()(Parameters... parameters)
    {
        auto *function = function_.load(std::memory_order_relaxed);
        if (function == nullptr) {
            function = reinterpret_cast<Result (*)(Parameters...)>(dlsym(RTLD_NEXT, name_));
            function_.store(function, std::memory_order_relaxed);
        }
        return function(parameters...);
    }

  private:
    const char *name_;
    std::atomic<Result (*)(Parameters...)> function_ = nullptr;
};

constinit Next<int(const char *, struct statvfs *)> s_statvfs("statvfs");
constinit Next<int(const char *, struct stat *)> s_stat("stat");
constinit Next<int(const char *, mode_t)> s_mkdir("mkdir");
constinit Next<int(timeval *, void *)> s_gettimeofday("gettimeofday");
constinit Next<time_t(time_t *)> s_time("time");
constinit Next<int(unsigned)> s_usleep("usleep");
constinit Next<int()> s_schedYield("sched_yield");
constinit Next<void *(const char *, int)> s_dlopen("dlopen");
constinit Next<int(void *)> s_dlclose("dlclose");
constinit Next<int(int, const struct sigaction *, struct sigaction *)> s_sigaction("sigaction");
constinit Next<int(pthread_mutex_t *)> s_mutexDestroy("pthread_mutex_destroy");
constinit Next<int(pthread_cond_t *, pthread_mutex_t *)> s_condWait("pthread_cond_wait");
constinit Next<int(pthread_cond_t *, pthread_mutex_t *, const timespec *)> s_condTimedWait("pthread_cond_timedwait");

} // namespace

namespace Real {
int stat(const char *path, struct stat *facts) { return s_stat(path, facts); }
int statvfs(const char *path, struct statvfs *facts) { return s_statvfs(path, facts); }
int sigaction(int signal, const struct sigaction *action, struct sigaction *previous)
{
    return s_sigaction(signal, action, previous);
}
void *dlopen(const char *path, int mode) { return s_dlopen(path, mode); }
int dlclose(void *library) { return s_dlclose(library); }
int usleep(unsigned microseconds) { return s_usleep(microseconds); }
} // namespace Real

} // namespace Orvi::Testing

using namespace Orvi::Testing;

extern "C" {

int statvfs(const char *__restrict path, struct statvfs *__restrict facts) noexcept
{
    return systemCalls.statvfs ? systemCalls.statvfs(path, facts) : s_statvfs(path, facts);
}

int stat(const char *__restrict path, struct stat *__restrict facts) noexcept
{
    return systemCalls.stat ? systemCalls.stat(path, facts) : s_stat(path, facts);
}

int mkdir(const char *path, mode_t mode) noexcept
{
    return systemCalls.mkdir ? systemCalls.mkdir(path, mode) : s_mkdir(path, mode);
}

int gettimeofday(timeval *__restrict now, void *__restrict zone) noexcept
{
    return systemCalls.gettimeofday ? systemCalls.gettimeofday(now) : s_gettimeofday(now, zone);
}

time_t time(time_t *now) noexcept
{
    if (!systemCalls.time)
        return s_time(now);
    const time_t answer = systemCalls.time();
    if (now)
        *now = answer;
    return answer;
}

int usleep(useconds_t microseconds)
{
    return systemCalls.usleep ? systemCalls.usleep(microseconds) : s_usleep(microseconds);
}

int sched_yield() noexcept { return systemCalls.sched_yield ? systemCalls.sched_yield() : s_schedYield(); }

void *dlopen(const char *path, int mode) noexcept
{
    return systemCalls.dlopen ? systemCalls.dlopen(path, mode) : s_dlopen(path, mode);
}

int dlclose(void *library) noexcept { return systemCalls.dlclose ? systemCalls.dlclose(library) : s_dlclose(library); }

int sigaction(int signal, const struct sigaction *__restrict action, struct sigaction *__restrict previous) noexcept
{
    return systemCalls.sigaction ? systemCalls.sigaction(signal, action, previous)
                                 : s_sigaction(signal, action, previous);
}

int pthread_mutex_destroy(pthread_mutex_t *mutex) noexcept
{
    if (systemCalls.mutexDestroy)
        return systemCalls.mutexDestroy(mutex);
    const int result = s_mutexDestroy(mutex);
    if (systemCalls.mutexDestroyed)
        systemCalls.mutexDestroyed(mutex, result);
    return result;
}

int pthread_cond_wait(pthread_cond_t *__restrict condition, pthread_mutex_t *__restrict mutex)
{
    if (!systemCalls.conditionWait)
        return s_condWait(condition, mutex);
    systemCalls.conditionWait(+1);
    const int result = s_condWait(condition, mutex);
    systemCalls.conditionWait(-1);
    return result;
}

int pthread_cond_timedwait(pthread_cond_t *__restrict condition, pthread_mutex_t *__restrict mutex,
                           const timespec *__restrict deadline)
{
    return systemCalls.timedWait ? systemCalls.timedWait(deadline) : s_condTimedWait(condition, mutex, deadline);
}

} // extern "C"
