#pragma once
// How the transport's code reports a failure: the status that the caller will see, and a text for the log.

#include "OrviCamApi.h"

#include <stdexcept>
#include <string>

namespace Orvi::U3v {

class StatusError : public std::runtime_error {
  public:
    StatusError(CAM_API_STATUS status, const std::string &text) : std::runtime_error(text), status_(status) {}
    CAM_API_STATUS Status() const noexcept { return status_; }

  private:
    CAM_API_STATUS status_;
};

} // namespace Orvi::U3v
