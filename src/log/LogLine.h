#pragma once
// The bytes of a log line. Applications parse them; the format is frozen.

#include "foundation/PublicApi.h"

#include <string_view>

namespace Orvi {

/// Who wrote a line.
enum class LogOrigin { Api, Application };

/// One line: "12.000345,API INFO ,ThreadId:0x5a3c1700,<text><status>" and a line feed.
class LogLine {
  public:
    /// @param elapsed microseconds since the log was started; negative when the clock was set back
    /// @param level   at most CAM_LOG_LEVEL_FATAL
    /// @param text    cut, together with the status, at 254 bytes
    /// @param status  name of the status that a call ended with, or null
    LogLine(int64_t elapsed, LogOrigin origin, uint32_t uiLevel, std::string_view text, const char *status);

    std::string_view Bytes() const { return {bytes_, size_}; }

  private:
    static constexpr std::size_t maxHead = 255;
    static constexpr std::size_t maxText = 254;

    template <std::size_t size>
    void AppendFixed(const char (&text)[size]);
    void Append(std::string_view text);
    void AppendSeconds(int64_t elapsed);

    std::size_t size_ = 0;
    char bytes_[maxHead + maxText + 1];
};

} // namespace Orvi
