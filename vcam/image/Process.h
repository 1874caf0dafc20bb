#pragma once
// A shell command that runs beside the camera and whose output is collected.

#include <chrono>
#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Orvi::Vcam {

/// A file descriptor of one's own.
class Descriptor {
  public:
    explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~Descriptor();
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int Get() const { return descriptor_; }
    void Reset(int descriptor);

  private:
    int descriptor_;
};

/// Ends waiting, once and for all.
class Cancellation {
  public:
    Cancellation();
    void Set();
    int Get() const { return event_.Get(); }

  private:
    Descriptor event_;
};

class Process {
  public:
    /// Starts the command in a process group of its own, without input. Throws std::system_error.
    explicit Process(const std::string &command);
    /// Kills the group, if it still runs.
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Waits for the command's end and gives its output. Throws std::runtime_error when it takes too long, is
    /// cancelled, writes too much or fails; the command is then over, too.
    std::vector<std::byte> Finish(std::chrono::milliseconds limit, const Cancellation &cancellation);

  private:
    void Kill();

    pid_t pid_ = -1; // and number of its group; -1 once it has been collected
    Descriptor output_;
};

} // namespace Orvi::Vcam
