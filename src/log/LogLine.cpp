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

/// What "%.06f" gives, which would cost more than the rest of the line. Returns its size.
std::size_t WriteSeconds(char *to, int64_t elapsed)
{
    constexpr int64_t second = 1000000;
    if (elapsed < 0 || elapsed / second > INT32_MAX) // the clock was set
        return static_cast<std::size_t>(std::snprintf(to, 24, "%.06f", static_cast<double>(elapsed) / 1e6));
    const std::size_t size = WriteDecimal(to, static_cast<int32_t>(elapsed / second));
    to[size] = '.';
    WriteSixDigits(to + size + 1, static_cast<uint32_t>(elapsed % second));
    return size + 7;
}

} // namespace

std::string_view LogLine::Finish(int64_t elapsed, LogOrigin origin, uint32_t uiLevel, const char *status)
{
    if (status != nullptr)
        for (const std::string_view part : {std::string_view("("), std::string_view(status), std::string_view(")")})
            Append(part);
    end_ = std::min(end_, text_ + maxTextInFile);
    *end_++ = '\n';

    char seconds[24] = {};
    const std::size_t secondsSize = WriteSeconds(seconds, elapsed);
    char *const begin = text_ - secondsSize - 31; // what follows the seconds is of one size
    std::memcpy(begin, seconds, sizeof seconds);
    char *end = Put(begin + secondsSize, origin == LogOrigin::Api ? ",API " : ",APL ");
    std::memcpy(end, s_levelWords[uiLevel], sizeof s_levelWords[uiLevel]);
    end = Put(end + sizeof s_levelWords[uiLevel], "ThreadId:0x");
    WriteHex8(end, static_cast<uint32_t>(pthread_self()), HexCase::Lower);
    Put(end + 8, ",");
    return {begin, static_cast<std::size_t>(end_ - begin)};
}

} // namespace Orvi
