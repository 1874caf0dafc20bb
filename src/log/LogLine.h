#pragma once
// The bytes of a log line. Applications parse them; the format is frozen:
//
//     12.000345,API INFO ,ThreadId:0x5a3c1700,<text>(<status>)

#include "foundation/PublicApi.h"
#include "foundation/TextBytes.h"

#include <algorithm>
#include <string_view>

namespace Orvi {

/// Who wrote a line.
enum class LogOrigin { Api, Application };

/// The time since the log was started. Negative when the clock was set back: -0.5 s are -1 s and 500000 us.
struct LogTime {
    int64_t seconds;
    int32_t microseconds; ///< 0 to 999999
};
inline constexpr std::size_t maxSeconds = sizeof "-9223372036854775808.000000" - 1;

/// A line that is being written: first its text, then, around it, what stands in every line.
class LogLine {
  public:
    LogLine() = default;
    explicit LogLine(std::string_view text) { Append(text); }
    LogLine(const LogLine &) = delete;
    LogLine &operator=(const LogLine &) = delete;

    /// Adds to the text; what goes beyond 255 bytes is cut.
    void Append(std::string_view text) { end_ = Append(end_, text); }

    std::string_view Text() const { return {bytes_ + maxHead, static_cast<std::size_t>(end_ - (bytes_ + maxHead))}; }

    /// Adds the rest and answers the whole line with its line feed. Text and status are cut at 254 bytes.
    /// @param uiLevel at most CAM_LOG_LEVEL_FATAL
    /// @param status  name of the status that a call ended with, or null
    std::string_view Finish(LogTime time, LogOrigin origin, uint32_t uiLevel, const char *status);

  protected:
    // Whoever adds several things keeps the end in a variable of its own: bytes that are written may be anything's, so
    // that a member would be read and written again for each.
    char *End() const { return end_; }
    void SetEnd(char *end) { end_ = end; }
    std::size_t Room() { return static_cast<std::size_t>(Limit() - end_); }
    /// Adds a text behind end; answers the new end.
    char *Append(char *end, std::string_view text)
    {
        return CopyBytes(end, text.data(), std::min(text.size(), static_cast<std::size_t>(Limit() - end)));
    }
    /// Numbers are written first and cut then: there is room for one behind the limit.
    char *Cut(char *end) { return std::min(end, Limit()); }

  private:
    static constexpr std::size_t maxText = 255;
    static constexpr std::size_t maxTextInFile = 254;
    static constexpr std::size_t afterSecondsSize = sizeof ",API INFO ,ThreadId:0x00000000," - 1;
    static constexpr std::size_t maxHead = maxSeconds + afterSecondsSize;

    char *Limit() { return bytes_ + maxHead + maxText; }

    char bytes_[maxHead + maxText + maxDigits];
    char *end_ = bytes_ + maxHead;
};

} // namespace Orvi
