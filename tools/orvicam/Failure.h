#pragma once
// How orvicam fails: with one of its exit codes and a text that names the thing and the next step.

#include "OrviCamApi.h"

#include <stdexcept>
#include <string>

namespace Orvi::Tool {

/// The program's exit codes: scripts rely on the numbers, and --help lists them.
enum class ExitCode : int {
    Success = 0,
    Failed = 1,
    Usage = 2,
    NoTransport = 3,
    NoCamera = 4,
    Feature = 5,
    Camera = 6,
    Images = 7,
    File = 8,
    Interrupted = 130, ///< what a shell reports for Ctrl-C
};

class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string &text) : std::runtime_error(text), code_(code) {}
    ExitCode Code() const noexcept { return code_; }

  private:
    ExitCode code_;
};

/// A status in words with its number, e.g. "the camera does not answer (status 0x13)".
std::string StatusText(CAM_API_STATUS status);

/// Why a camera did not open: the transport's own words when it has some, which name the next step.
std::string OpeningText(CAM_API_STATUS status);

/// Whether a status says that the camera was unplugged or does not answer.
bool IsCameraGone(CAM_API_STATUS status);

/// Throws Failure(Camera) "what: why" unless the status is success.
void Check(CAM_API_STATUS status, const std::string &what);

} // namespace Orvi::Tool
