#include "Failure.h"

#include "Text.h"

#include <algorithm>
#include <iterator>

namespace Orvi::Tool {
namespace {

struct StatusWords {
    CAM_API_STATUS status;
    const char *words;
};

// clang-format off
constexpr StatusWords s_words[] = {
    {CAM_API_STS_NOT_FOUND,                "there is no such thing"},
    {CAM_API_STS_ALREADY_OPENED,           "it is in use already"},
    {CAM_API_STS_INVALID_CAMERA_INDEX,     "the camera is no longer there"},
    {CAM_API_STS_INVALID_CAMERA_HANDLE,    "the camera is no longer open"},
    {CAM_API_STS_INVALID_PARAMETER,        "an argument was refused"},
    {CAM_API_STS_NO_MEMORY,                "out of memory"},
    {CAM_API_STS_NOT_IMPLEMENTED,          "the camera has no such feature"},
    {CAM_API_STS_TIMEOUT,                  "the camera did not answer in time"},
    {CAM_API_STS_CAMERA_NOT_RESPONDING,    "the camera does not answer; is it still plugged in?"},
    {CAM_API_STS_XML_LOAD_ERR,             "the camera's description cannot be used"},
    {CAM_API_STS_ACCESS_DENIED,            "the camera refuses it in its present state"},
    {CAM_API_STS_BUSY,                     "the camera is busy"},
    {CAM_API_STS_NOT_READABLE,             "it cannot be read"},
    {CAM_API_STS_NOT_WRITABLE,             "it cannot be written, or not now"},
    {CAM_API_STS_NOT_AVAILABLE,            "it is not available now"},
    {CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE, "the camera was unplugged"},
};
// clang-format on

} // namespace

std::string OpeningText(CAM_API_STATUS status)
{
    CAM_GENICAM_ERROR error{};
    if (status != CAM_API_STS_ALREADY_OPENED && Misc_SetLastGenICamError(1) == CAM_API_STS_SUCCESS &&
        Misc_GetLastGenICamError(&error) == CAM_API_STS_SUCCESS && error.pszMessage != nullptr &&
        *error.pszMessage != '\0')
        return error.pszMessage + (" (status " + Hex(status) + ")");
    return StatusText(status);
}

std::string StatusText(CAM_API_STATUS status)
{
    const std::string number = "status " + Hex(status);
    if (status == CAM_API_STS_GENICAM_ERR) {
        CAM_GENICAM_ERROR error{};
        if (Misc_GetLastGenICamError(&error) == CAM_API_STS_SUCCESS && error.pszMessage != nullptr)
            return error.pszMessage + (" (" + number + ")");
    }
    const auto *row = std::find_if(std::begin(s_words), std::end(s_words),
                                   [status](const StatusWords &words) { return words.status == status; });
    return row != std::end(s_words) ? row->words + (" (" + number + ")") : "failed with " + number;
}

bool IsCameraGone(CAM_API_STATUS status)
{
    return status == CAM_API_STS_TIMEOUT || status == CAM_API_STS_CAMERA_NOT_RESPONDING ||
           status == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
}

void Check(CAM_API_STATUS status, const std::string &what)
{
    if (status != CAM_API_STS_SUCCESS)
        throw Failure(ExitCode::Camera, what + ": " + StatusText(status));
}

} // namespace Orvi::Tool
