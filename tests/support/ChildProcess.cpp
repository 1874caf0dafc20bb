#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include <sys/wait.h>
#include <unistd.h>

namespace Orvi::Testing {

int WaitStatusOfChild(const std::function<void()> &body)
{
    constexpr unsigned longestSeconds = 120;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGALRM, SIG_DFL);
        alarm(longestSeconds);
        body();
        std::fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    while (child != -1 && waitpid(child, &status, 0) == -1)
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "waitpid");
    if (child == -1)
        throw std::system_error(errno, std::generic_category(), "fork");
    return status;
}

bool PassesInChild(const std::function<void()> &body)
{
    const int status = WaitStatusOfChild(body);
    if (WIFSIGNALED(status))
        ADD_FAILURE() << "the child was ended by signal " << WTERMSIG(status);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace Orvi::Testing
