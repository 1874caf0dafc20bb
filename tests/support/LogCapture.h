#pragma once
// The library's log as a test reads it.

#include "OrviCamApi.h"

#include <string>
#include <vector>

namespace Orvi::Testing {

/// Has the log up as a ring in memory, at level DEBUG unless told otherwise, as long as it lives.
class LogCapture {
  public:
    explicit LogCapture(uint32_t level = CAM_LOG_LEVEL_DEBUG);
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    /// The lines since the last time, without time, origin and thread: "INFO ,ENTER: Cam_Open, ...". What was written
    /// without a head is given as it stands.
    std::vector<std::string> Take();

  private:
    std::string path_;
};

/// A line of the log without "12.000345,API " and "ThreadId:0x5a3c1700,"; other lines unchanged.
std::string WithoutHead(const std::string &line);

} // namespace Orvi::Testing
