#pragma once
// The log before a clock that the test sets, and its bytes.

#include "OrviCamApi.h"

#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvi::Testing {

class LogTest : public ::testing::Test {
  protected:
    LogTest();
    ~LogTest() override;

    /// What gettimeofday() answers from now on.
    static void SetClock(time_t seconds, suseconds_t microseconds);
    /// What time() answers from now on.
    static void SetCalendar(time_t seconds);

    std::filesystem::path Path(const std::string &name = "log.txt") const { return folder_.Path() / name; }
    std::string FileBytes(const std::string &name = "log.txt") const { return ReadFile(Path(name)); }

    /// What a dump of the ring writes behind its head.
    std::string RingBytes() const;
    /// The head of a dump for the two times that are set.
    static std::string DumpHead(time_t started, time_t now);

    /// A line as this thread writes it at this time stamp.
    static std::string Line(const std::string &stamp, const std::string &origin, const std::string &word,
                            const std::string &text);
    /// The same at time stamp 0.
    static std::string Apl(const std::string &word, const std::string &text)
    {
        return Line("0.000000", "APL", word, text);
    }
    static std::string Api(const std::string &word, const std::string &text)
    {
        return Line("0.000000", "API", word, text);
    }

    ScopedSystemCalls calls;

  private:
    TempFolder folder_;
};

} // namespace Orvi::Testing
