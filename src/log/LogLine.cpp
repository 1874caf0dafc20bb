#include "log/LogLine.h"

#include "foundation/TextBytes.h"

#include <cstdio>
#include <cstring>

#include <pthread.h>

namespace Orvi {

namespace {

constexpr char s_levelWords[][6] = {{'D', 'E', 'B', 'U', 'G', ','},
                                    {'I', 'N', 'F', 'O', ' ', ','},
                                    {'W', 'A', 'R', 'N', ' ', ','},
                                    {'E', 'R', 'R', 'O', 'R', ','},
                                    {'F', 'A', 'T', 'A', 'L', ','}};

} // namespace

LogLine::LogLine(int64_t elapsed, LogOrigin origin, uint32_t uiLevel, std::string_view text, const char *status)
{
    AppendSeconds(elapsed);
    AppendFixed(origin == LogOrigin::Api ? ",API " : ",APL ");
    std::memcpy(bytes_ + size_, s_levelWords[uiLevel], sizeof s_levelWords[uiLevel]);
    size_ += sizeof s_levelWords[uiLevel];
    AppendFixed("ThreadId:0x");
    WriteHex8(bytes_ + size_, static_cast<uint32_t>(pthread_self()), HexCase::Lower);
    size_ += 8;
    AppendFixed(",");

    const std::size_t end = size_ + maxText;
    Append(text.substr(0, maxText));
    if (status != nullptr) {
        for (std::string_view part : {std::string_view("("), std::string_view(status), std::string_view(")")})
            Append(part.substr(0, end - size_));
    }
    bytes_[size_++] = '\n';
}

template <std::size_t size>
void LogLine::AppendFixed(const char (&text)[size])
{
    std::memcpy(bytes_ + size_, text, size - 1);
    size_ += size - 1;
}

void LogLine::Append(std::string_view text)
{
    CopyBytes(bytes_ + size_, text.data(), text.size());
    size_ += text.size();
}

/// What "%.06f" gives, which would cost more than the rest of the line.
void LogLine::AppendSeconds(int64_t elapsed)
{
    constexpr int64_t second = 1000000;
    if (elapsed < 0 || elapsed / second > INT32_MAX) { // the clock was set
        size_ += static_cast<std::size_t>(
            std::snprintf(bytes_ + size_, maxHead, "%.06f", static_cast<double>(elapsed) / 1e6));
        return;
    }
    size_ += WriteDecimal(bytes_ + size_, static_cast<int32_t>(elapsed / second));
    bytes_[size_] = '.';
    WriteSixDigits(bytes_ + size_ + 1, static_cast<uint32_t>(elapsed % second));
    size_ += 7;
}

} // namespace Orvi
