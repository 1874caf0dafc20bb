#pragma once
// A thread that is expected to wait for ever. It cannot be ended: start it in a child process.

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

namespace Orvi::Testing {

class BlockedThread {
  public:
    template <class Work>
    explicit BlockedThread(Work work)
    {
        std::thread([this, work] {
            thread_ = gettid();
            work();
            hasReturned_ = true;
        }).detach();
    }

    /// True once the thread has slept at every one of many looks; false as soon as its work has returned.
    bool IsAsleepForGood() const
    {
        constexpr int looks = 200;
        for (int asleep = 0; asleep < looks; asleep = State() == 'S' ? asleep + 1 : 0) {
            if (hasReturned_)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return !hasReturned_;
    }

  private:
    char State() const
    {
        std::ifstream file("/proc/self/task/" + std::to_string(thread_) + "/stat");
        std::string text{std::istreambuf_iterator<char>(file), {}};
        const std::size_t name = text.rfind(") ");
        return name == std::string::npos ? '?' : text[name + 2];
    }

    std::atomic<pid_t> thread_ = 0;
    std::atomic<bool> hasReturned_ = false;
};

} // namespace Orvi::Testing
