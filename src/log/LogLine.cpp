#include "log/LogLine.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include <pthread.h>

namespace Orvi {

namespace {

/// What stands between the time and the thread.
struct Origin {
    char text[sizeof ",API INFO ,ThreadId:0x"];
};

// clang-format off
constexpr Origin s_origins[][2] = {
    {{",API DEBUG,ThreadId:0x"}, {",APL DEBUG,ThreadId:0x"}},
    {{",API INFO ,ThreadId:0x"}, {",APL INFO ,ThreadId:0x"}},
    {{",API WARN ,ThreadId:0x"}, {",APL WARN ,ThreadId:0x"}},
    {{",API ERROR,ThreadId:0x"}, {",APL ERROR,ThreadId:0x"}},
    {{",API FATAL,ThreadId:0x"}, {",APL FATAL,ThreadId:0x"}},
};
// clang-format on

/// What "%.06f" gives, ending at end: backwards and in place, as formatting it elsewhere and copying it would cost more
/// than the rest of the line. Returns where it begins.
char *WriteSecondsBefore(char *end, LogTime time)
{
    if (time.seconds < 0 || time.seconds > UINT32_MAX) [[unlikely]] { // the clock was set
        char text[maxSeconds + 1];
        const double seconds = static_cast<double>(time.seconds) + static_cast<double>(time.microseconds) / 1e6;
        const int size = std::snprintf(text, sizeof text, "%.06f", seconds);
        return static_cast<char *>(std::memcpy(end - size, text, static_cast<std::size_t>(size)));
    }
    WriteSixDigits(end - 6, static_cast<uint32_t>(time.microseconds));
    end[-7] = '.';
    return WriteDecimalBefore(end - 7, static_cast<uint32_t>(time.seconds));
}

} // namespace

std::string_view LogLine::Finish(LogTime time, LogOrigin origin, uint32_t uiLevel, const char *status)
{
    char *const text = bytes_ + maxHead;
    char *end = end_;
    if (status != nullptr)
        for (const std::string_view part : {std::string_view("("), std::string_view(status), std::string_view(")")})
            end = Append(end, part);
    end = std::min(end, text + maxTextInFile);
    *end++ = '\n';

    char *const afterSeconds = text - afterSecondsSize;
    const Origin &from = s_origins[uiLevel][origin == LogOrigin::Api ? 0 : 1];
    char *const thread = CopyBytes(afterSeconds, from.text, sizeof from.text - 1);
    *WriteHex8(thread, static_cast<uint32_t>(pthread_self()), HexCase::Lower) = ',';
    char *const begin = WriteSecondsBefore(afterSeconds, time);
    return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace Orvi
