#include "vcam/Alarm.h"

#include <utility>

namespace Orvi::Vcam {

void Alarm::Set(TimePoint due, std::function<void()> function)
{
    const std::lock_guard lock(mutex_);
    if (isStopping_) {
        return;
    }
    waiting_.emplace(due, std::move(function));
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { Run(); });
    }
    wake_.notify_one();
}

void Alarm::Stop()
{
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
        wake_.notify_one();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

void Alarm::Run()
{
    std::unique_lock lock(mutex_);
    while (!isStopping_) {
        if (waiting_.empty()) {
            wake_.wait(lock);
            continue;
        }
        const TimePoint due = waiting_.begin()->first;
        if (std::chrono::steady_clock::now() < due) {
            wake_.wait_until(lock, due);
            continue;
        }
        const std::function<void()> function = std::move(waiting_.extract(waiting_.begin()).mapped());
        lock.unlock();
        function();
        lock.lock();
    }
}

} // namespace Orvi::Vcam
