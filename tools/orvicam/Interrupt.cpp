#include "Interrupt.h"

#include "Failure.h"

#include <csignal>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace Orvi::Tool {
namespace {

sigset_t WatchedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

} // namespace

InterruptBlock::InterruptBlock()
{
    const sigset_t signals = WatchedSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

InterruptBlock::~InterruptBlock()
{
    const sigset_t signals = WatchedSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

InterruptWatcher::InterruptWatcher(std::function<void()> onInterrupt) : onInterrupt_(std::move(onInterrupt))
{
    thread_ = std::thread([this] { Watch(); });
}

InterruptWatcher::~InterruptWatcher()
{
    ending_ = true;
    pthread_kill(thread_.native_handle(), SIGINT);
    thread_.join();
}

void InterruptWatcher::Watch()
{
    const sigset_t signals = WatchedSignals();
    for (int number = 0; sigwait(&signals, &number) == 0 && !ending_;) {
        if (interrupted_.exchange(true))
            _exit(static_cast<int>(ExitCode::Interrupted));
        onInterrupt_();
    }
}

} // namespace Orvi::Tool
