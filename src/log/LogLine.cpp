#include "log/LogLine.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <pthread.h>

namespace Orvi {

namespace {

constexpr std::string_view s_levelWords[] = {"DEBUG,", "INFO ,", "WARN ,", "ERROR,", "FATAL,"};

/// Writes the lowest digits of a number, with leading zeros.
void WriteDigits(char *end, int count, unsigned long value, unsigned base)
{
    for (; count > 0; --count, value /= base)
        *--end = "0123456789abcdef"[value % base];
}

} // namespace

LogLine::LogLine(timeval elapsed, LogOrigin origin, uint32_t uiLevel, std::string_view text, const char *status)
{
    AppendSeconds(elapsed);
    Append(origin == LogOrigin::Api ? ",API " : ",APL ");
    Append(s_levelWords[uiLevel]);
    AppendThread();

    const std::size_t end = size_ + maxText;
    Append(text.substr(0, maxText));
    if (status != nullptr) {
        for (std::string_view part : {std::string_view("("), std::string_view(status), std::string_view(")")})
            Append(part.substr(0, end - size_));
    }
    Append("\n");
}

void LogLine::Append(std::string_view text)
{
    std::memcpy(bytes_ + size_, text.data(), text.size());
    size_ += text.size();
}

/// What "%.06f" gives, which would cost more than the rest of the line.
void LogLine::AppendSeconds(timeval elapsed)
{
    if (elapsed.tv_sec < 0) { // the clock was set back
        const double seconds = static_cast<double>(elapsed.tv_sec) + static_cast<double>(elapsed.tv_usec) / 1e6;
        size_ += static_cast<std::size_t>(std::snprintf(bytes_ + size_, maxHead, "%.06f", seconds));
        return;
    }
    const auto seconds = static_cast<unsigned long>(elapsed.tv_sec);
    int digits = 1;
    for (unsigned long rest = seconds / 10; rest != 0; rest /= 10)
        ++digits;
    char *point = bytes_ + size_ + digits;
    WriteDigits(point, digits, seconds, 10);
    *point = '.';
    WriteDigits(point + 7, 6, static_cast<unsigned long>(elapsed.tv_usec), 10);
    size_ += static_cast<std::size_t>(digits) + 7;
}

void LogLine::AppendThread()
{
    Append("ThreadId:0x00000000,");
    WriteDigits(bytes_ + size_ - 1, 8, pthread_self() & 0xFFFFFFFF, 16);
}

} // namespace Orvi
