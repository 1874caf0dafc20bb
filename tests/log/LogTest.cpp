#include "tests/log/LogTest.h"

#include <cstdio>
#include <stdexcept>

namespace Orvi::Testing {

namespace {

timeval s_clock;
time_t s_calendar;

} // namespace

LogTest::LogTest()
{
    SetClock(1000, 0);
    SetCalendar(1000);
    calls->gettimeofday = [](timeval *now) {
        *now = s_clock;
        return 0;
    };
    calls->time = [] { return s_calendar; };
}

LogTest::~LogTest() { Log_Terminate(); }

void LogTest::SetClock(time_t seconds, suseconds_t microseconds) { s_clock = {seconds, microseconds}; }
void LogTest::SetCalendar(time_t seconds) { s_calendar = seconds; }

std::string LogTest::RingBytes() const
{
    const std::filesystem::path path = Path("dump.txt");
    if (Log_OutMemToFile(path.c_str()) != 0)
        throw std::runtime_error("the ring cannot be dumped");
    const std::string dump = ReadFile(path);
    const std::size_t head = dump.find("\n\n");
    return head == std::string::npos ? "no head: " + dump : dump.substr(head + 2);
}

std::string LogTest::DumpHead(time_t started, time_t now)
{
    const std::string start = std::ctime(&started);
    return "OrviCamApi Ver.: 1.1.0\nStart time     : " + start + "Now   time     : " + std::ctime(&now) + '\n';
}

std::string LogTest::Line(const std::string &stamp, const std::string &origin, const std::string &word,
                          const std::string &text)
{
    char thread[32];
    std::snprintf(thread, sizeof thread, "ThreadId:0x%08x,", static_cast<unsigned>(pthread_self()));
    return stamp + ',' + origin + ' ' + word + thread + text + '\n';
}

} // namespace Orvi::Testing
