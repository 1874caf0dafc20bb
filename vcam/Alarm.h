#pragma once
// Calls functions when their time has come, on a thread of its own that begins with the first of them.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace Orvi::Vcam {

class Alarm {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;

    ~Alarm() { Stop(); }

    /// The function may set further alarms. It is called without a lock.
    void Set(TimePoint due, std::function<void()> function);
    /// Ends the thread; from now on nothing is called.
    void Stop();

  private:
    void Run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::multimap<TimePoint, std::function<void()>> waiting_;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace Orvi::Vcam
