#include "vcam/image/Process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace Orvi::Vcam {

namespace {

constexpr std::size_t s_largestOutput = std::size_t{1} << 30;

using Clock = std::chrono::steady_clock;

/// Waits for a descriptor; throws when the time is over or the waiting is cancelled.
void Await(int descriptor, Clock::time_point deadline, const Cancellation &cancellation)
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        std::array<pollfd, 2> polled{{{descriptor, POLLIN, 0}, {cancellation.Get(), POLLIN, 0}}};
        const int wait = static_cast<int>(std::max<std::int64_t>(0, left.count()));
        const int ready = poll(polled.data(), polled.size(), wait);
        if (ready < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        if (ready > 0 && polled[1].revents != 0) {
            throw std::runtime_error("the camera is going");
        }
        if (ready > 0) {
            return;
        }
        if (ready == 0 && Clock::now() >= deadline) {
            throw std::runtime_error("it has not ended in time");
        }
    }
}

class SpawnSetup {
  public:
    explicit SpawnSetup(int output)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawnattr_init(&attributes);
        // The command begins with the signals as programs expect them, whatever the application has made of its own.
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup &) = delete;
    SpawnSetup &operator=(const SpawnSetup &) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

} // namespace

Descriptor::~Descriptor() { Reset(-1); }

void Descriptor::Reset(int descriptor)
{
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
    descriptor_ = descriptor;
}

Cancellation::Cancellation() : event_(eventfd(0, EFD_CLOEXEC)) {}

void Cancellation::Set()
{
    const std::uint64_t one = 1;
    static_cast<void>(!write(event_.Get(), &one, sizeof one));
}

Process::Process(const std::string &command)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    output_.Reset(ends[0]);
    const Descriptor input(ends[1]);
    const SpawnSetup setup(input.Get());
    std::string shell = "sh", option = "-c", text = command;
    std::array<char *, 4> arguments{shell.data(), option.data(), text.data(), nullptr};
    if (const int error = posix_spawn(&pid_, "/bin/sh", &setup.actions, &setup.attributes, arguments.data(), environ)) {
        pid_ = -1;
        throw std::system_error(error, std::generic_category(), "/bin/sh");
    }
}

Process::~Process() { Kill(); }

void Process::Kill()
{
    if (pid_ > 0) {
        kill(-pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

std::vector<std::byte> Process::Finish(std::chrono::milliseconds limit, const Cancellation &cancellation)
{
    const Clock::time_point deadline = Clock::now() + limit;
    std::vector<std::byte> output;
    std::array<std::byte, 65536> part{};
    for (;;) {
        Await(output_.Get(), deadline, cancellation);
        const ssize_t length = read(output_.Get(), part.data(), part.size());
        if (length < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "its output");
        }
        if (length == 0) {
            break;
        }
        output.insert(output.end(), part.begin(), part.begin() + std::max<ssize_t>(0, length));
        if (output.size() > s_largestOutput) {
            throw std::runtime_error("it writes too much");
        }
    }
    // A command may close its output and stay.
    const Descriptor ended(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
    if (ended.Get() >= 0) {
        Await(ended.Get(), deadline, cancellation);
    }
    int status = 0;
    const bool isKnown = waitpid(pid_, &status, 0) == pid_; // not in a process that ignores its children
    pid_ = -1;
    if (isKnown && WIFSIGNALED(status)) {
        throw std::runtime_error("it was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (isKnown && WEXITSTATUS(status) != 0) {
        throw std::runtime_error("it ended with exit code " + std::to_string(WEXITSTATUS(status)));
    }
    return output;
}

} // namespace Orvi::Vcam
