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

/// A line that is being written: first its text, then, around it, what stands in every line.
class LogLine {
  public:
    LogLine() = default;
    explicit LogLine(std::string_view text) { Append(text); }

    /// Adds to the text; what goes beyond 255 bytes is cut.
    void Append(std::string_view text)
    {
        const std::size_t count = std::min(text.size(), static_cast<std::size_t>(limit_ - end_));
        CopyBytes(end_, text.data(), count);
        end_ += count;
    }
    void AppendDecimal(int32_t number) { Advance(WriteDecimal(end_, number)); }
    void AppendHex(uint64_t number, HexCase hexCase) { Advance(WriteHex(end_, number, hexCase)); }
    void AppendHex8(uint32_t number, HexCase hexCase)
    {
        WriteHex8(end_, number, hexCase);
        Advance(8);
    }

    std::string_view Text() const { return {text_, static_cast<std::size_t>(end_ - text_)}; }

    /// Adds the rest and answers the whole line with its line feed. Text and status are cut at 254 bytes.
    /// @param elapsed microseconds since the log was started; negative when the clock was set back
    /// @param uiLevel at most CAM_LOG_LEVEL_FATAL
    /// @param status  name of the status that a call ended with, or null
    std::string_view Finish(int64_t elapsed, LogOrigin origin, uint32_t uiLevel, const char *status);

  private:
    static constexpr std::size_t afterSecondsSize = sizeof ",API INFO ,ThreadId:0x00000000," - 1;
    static constexpr std::size_t maxHead = afterSecondsSize + 24;
    static constexpr std::size_t maxText = 255;
    static constexpr std::size_t maxTextInFile = 254;

    /// Numbers are written first and cut then: there is room for one behind the limit.
    void Advance(std::size_t count) { end_ = std::min(end_ + count, limit_); }

    char bytes_[maxHead + maxText + maxDigits];
    char *const text_ = bytes_ + maxHead;
    char *const limit_ = text_ + maxText;
    char *end_ = text_;
};

} // namespace Orvi
