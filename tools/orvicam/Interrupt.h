#pragma once
// Ctrl-C as an ordinary call on an ordinary thread.

#include <atomic>
#include <functional>
#include <thread>

namespace Orvi::Tool {

/// Holds SIGINT and SIGTERM back. To be made before other threads, so that all of them leave these signals alone.
class InterruptBlock {
  public:
    InterruptBlock();
    ~InterruptBlock();
    InterruptBlock(const InterruptBlock &) = delete;
    InterruptBlock &operator=(const InterruptBlock &) = delete;
};

/// While it lives, the first held signal calls the function; a second one ends the program.
class InterruptWatcher {
  public:
    explicit InterruptWatcher(std::function<void()> onInterrupt);
    ~InterruptWatcher();
    InterruptWatcher(const InterruptWatcher &) = delete;
    InterruptWatcher &operator=(const InterruptWatcher &) = delete;

    bool Interrupted() const { return interrupted_; }

  private:
    void Watch();

    std::function<void()> onInterrupt_;
    std::atomic<bool> interrupted_ = false;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

} // namespace Orvi::Tool
