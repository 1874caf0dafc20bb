#include "log/LogLine.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include <pthread.h>

namespace Orvi {

namespace {

// clang-format off
constexpr char s_levelWords[][6] = {
    {'D', 'E', 'B', 'U', 'G', ','},
    {'I', 'N', 'F', 'O', ' ', ','},
    {'W', 'A', 'R', 'N', ' ', ','},
    {'E', 'R', 'R', 'O', 'R', ','},
    {'F', 'A', 'T', 'A', 'L', ','},
};
// clang-format on

/// Copies a literal without its NUL; the address behind it.
template <std::size_t size>
char *Put(char *to, const char (&text)[size])
{
    std::memcpy(to, text, size - 1);
    return to + size - 1;
}

/// What "%.06f" gives, ending at end: backwards and in place, as formatting it elsewhere and copying it would cost more
/// than the rest of the line. Returns where it begins.
char *WriteSecondsBefore(char *end, int64_t elapsed)
{
    constexpr int64_t second = 1000000;
    if (elapsed < 0 || elapsed / second > INT32_MAX) { // the clock was set
        char seconds[24];
        const int size = std::snprintf(seconds, sizeof seconds, "%.06f", static_cast<double>(elapsed) / 1e6);
        return static_cast<char *>(std::memcpy(end - size, seconds, static_cast<std::size_t>(size)));
    }
    char *begin = end - 6;
    WriteSixDigits(begin, static_cast<uint32_t>(elapsed % second));
    *--begin = '.';
    auto seconds = static_cast<uint32_t>(elapsed / second);
    do {
        *--begin = static_cast<char>('0' + seconds % 10);
        seconds /= 10;
    } while (seconds != 0);
    return begin;
}

} // namespace

std::string_view LogLine::Finish(int64_t elapsed, LogOrigin origin, uint32_t uiLevel, const char *status)
{
    if (status != nullptr)
        for (const std::string_view part : {std::string_view("("), std::string_view(status), std::string_view(")")})
            Append(part);
    end_ = std::min(end_, text_ + maxTextInFile);
    *end_++ = '\n';

    char *const afterSeconds = text_ - afterSecondsSize;
    char *const begin = WriteSecondsBefore(afterSeconds, elapsed);
    char *end = Put(afterSeconds, origin == LogOrigin::Api ? ",API " : ",APL ");
    std::memcpy(end, s_levelWords[uiLevel], sizeof s_levelWords[uiLevel]);
    end = Put(end + sizeof s_levelWords[uiLevel], "ThreadId:0x");
    WriteHex8(end, static_cast<uint32_t>(pthread_self()), HexCase::Lower);
    Put(end + 8, ",");
    return {begin, static_cast<std::size_t>(end_ - begin)};
}

} // namespace Orvi
