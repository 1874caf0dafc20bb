#include "foundation/U3vCamApiString.h"

#include "foundation/TransportStatus.h"

#include <algorithm>
#include <iterator>

namespace Orvi {

namespace {

constexpr bool TRANSPORT = true;
constexpr bool OWN = false;

// In ascending order: the look-up is a binary search.
// clang-format off
#define STATUS(name, level, source) {CAM_API_STS_##name, "U3V_CAM_API_STS_" #name, CAM_LOG_LEVEL_##level, source},
constexpr StatusFacts s_statuses[] = {
    STATUS(SUCCESS,                   INFO,  TRANSPORT)
    STATUS(NOT_INITIALIZED,           ERROR, TRANSPORT)
    STATUS(ALREADY_INITIALIZED,       WARN,  TRANSPORT)
    STATUS(NOT_FOUND,                 ERROR, OWN)
    STATUS(ALREADY_OPENED,            WARN,  TRANSPORT)
    STATUS(ALREADY_ACTIVATED,         ERROR, TRANSPORT)
    STATUS(INVALID_CAMERA_INDEX,      ERROR, TRANSPORT)
    STATUS(INVALID_CAMERA_HANDLE,     ERROR, TRANSPORT)
    STATUS(INVALID_NODE_HANDLE,       ERROR, TRANSPORT)
    STATUS(INVALID_STREAM_HANDLE,     ERROR, TRANSPORT)
    STATUS(INVALID_REQUEST_HANDLE,    ERROR, TRANSPORT)
    STATUS(INVALID_EVENT_HANDLE,      ERROR, TRANSPORT)
    STATUS(INVALID_IMAGE_HANDLE,      ERROR, TRANSPORT)
    STATUS(INVALID_PARAMETER,         ERROR, TRANSPORT)
    STATUS(BUFFER_TOO_SMALL,          ERROR, TRANSPORT)
    STATUS(NO_MEMORY,                 ERROR, TRANSPORT)
    STATUS(MEMORY_NO_ACCESS,          ERROR, TRANSPORT)
    STATUS(NOT_IMPLEMENTED,           ERROR, TRANSPORT)
    STATUS(TIMEOUT,                   ERROR, TRANSPORT)
    STATUS(CAMERA_NOT_RESPONDING,     ERROR, TRANSPORT)
    STATUS(EMPTY_COMPLETE_QUEUE,      WARN,  TRANSPORT)
    STATUS(NOT_READY,                 ERROR, OWN)
    STATUS(ACCESS_MODE_SET_ERR,       ERROR, OWN)
    STATUS(XML_LOAD_ERR,              ERROR, TRANSPORT)
    STATUS(GENICAM_ERR,               ERROR, TRANSPORT)
    STATUS(DLL_LOAD_ERR,              ERROR, OWN)
    STATUS(INVALID_ADDRESS,           ERROR, TRANSPORT)
    STATUS(WRITE_PROTECT,             ERROR, TRANSPORT)
    STATUS(BAD_ALIGNMENT,             ERROR, TRANSPORT)
    STATUS(ACCESS_DENIED,             ERROR, TRANSPORT)
    STATUS(BUSY,                      ERROR, TRANSPORT)
    STATUS(NOT_READABLE,              ERROR, OWN)
    STATUS(NOT_WRITABLE,              ERROR, OWN)
    STATUS(NOT_AVAILABLE,             ERROR, OWN)
    STATUS(REQUEST_TIMEOUT,           ERROR, TRANSPORT)
    STATUS(RESEND_TIMEOUT,            ERROR, OWN)
    STATUS(RESPONSE_TIMEOUT,          ERROR, OWN)
    STATUS(BUFFER_FULL,               ERROR, TRANSPORT)
    STATUS(UNEXPECTED_BUFFER_SIZE,    ERROR, TRANSPORT)
    STATUS(UNEXPECTED_NUMBER,         ERROR, OWN)
    STATUS(PACKET_STATUS_ERROR,       ERROR, TRANSPORT)
    STATUS(RESEND_NOT_IMPLEMENTED,    ERROR, OWN)
    STATUS(PACKET_UNAVAILABLE,        ERROR, OWN)
    STATUS(MISSING_PACKETS,           ERROR, TRANSPORT)
    STATUS(FLUSH_REQUESTED,           WARN,  TRANSPORT)
    STATUS(TOO_MANY_PACKET_MISSING,   ERROR, OWN)
    STATUS(FLUSHED_BY_D0EXIT,         ERROR, TRANSPORT)
    STATUS(FLUSHED_BY_CAMERA_REMOVE,  ERROR, TRANSPORT)
    STATUS(FILE_OPEN_ERROR,           ERROR, OWN)
    STATUS(FILE_WRITE_ERROR,          ERROR, OWN)
    STATUS(FILE_READ_ERROR,           ERROR, OWN)
    STATUS(FILE_NOT_FOUND,            ERROR, OWN)
    STATUS(DATA_DISCARDED,            ERROR, TRANSPORT)
    STATUS(UNSUCCESSFUL,              ERROR, TRANSPORT)
};
#undef STATUS
// clang-format on

static_assert(std::ranges::is_sorted(s_statuses, {}, &StatusFacts::value));

} // namespace

const StatusFacts *FindStatus(CAM_API_STATUS status) noexcept
{
    const StatusFacts *row = std::ranges::lower_bound(s_statuses, status, {}, &StatusFacts::value);
    return row != std::end(s_statuses) && row->value == status ? row : nullptr;
}

CAM_API_STATUS TranslateTransportStatus(CAM_API_STATUS status) noexcept
{
    if (status == U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE)
        return CAM_API_STS_NOT_AVAILABLE;
    const StatusFacts *facts = FindStatus(status);
    return facts != nullptr && facts->fromTransport ? status : CAM_API_STS_UNSUCCESSFUL;
}

} // namespace Orvi

const char *U3vCamApiStatusString(uint32_t uiStatus)
{
    if (uiStatus == U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE)
        return "U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE";
    const Orvi::StatusFacts *facts = Orvi::FindStatus(uiStatus);
    return facts != nullptr && facts->fromTransport ? facts->transportName : "U3V_CAM_API_STS_???";
}
