#include "tests/support/StatusTable.h"

#include <algorithm>
#include <random>
#include <set>

namespace Orvi::Testing {

namespace {

constexpr uint32_t INFO = 1, WARN = 2, ERROR = 3;
constexpr const char *s_levelWords[] = {"DEBUG,", "INFO ,", "WARN ,", "ERROR,", "FATAL,"};

} // namespace

const std::vector<StatusRow> &StatusRows()
{
    // clang-format off
    static const std::vector<StatusRow> rows = {
        {0x0,        "CAM_API_STS_SUCCESS",                  INFO,  true},
        {0x1,        "CAM_API_STS_NOT_INITIALIZED",          ERROR, true},
        {0x2,        "CAM_API_STS_ALREADY_INITIALIZED",      WARN,  true},
        {0x3,        "CAM_API_STS_NOT_FOUND",                ERROR, false},
        {0x4,        "CAM_API_STS_ALREADY_OPENED",           WARN,  true},
        {0x5,        "CAM_API_STS_ALREADY_ACTIVATED",        ERROR, true},
        {0x6,        "CAM_API_STS_INVALID_CAMERA_INDEX",     ERROR, true},
        {0x7,        "CAM_API_STS_INVALID_CAMERA_HANDLE",    ERROR, true},
        {0x8,        "CAM_API_STS_INVALID_NODE_HANDLE",      ERROR, true},
        {0x9,        "CAM_API_STS_INVALID_STREAM_HANDLE",    ERROR, true},
        {0xA,        "CAM_API_STS_INVALID_REQUEST_HANDLE",   ERROR, true},
        {0xB,        "CAM_API_STS_INVALID_EVENT_HANDLE",     ERROR, true},
        {0xC,        "CAM_API_STS_INVALID_IMAGE_HANDLE",     ERROR, true},
        {0xD,        "CAM_API_STS_INVALID_PARAMETER",        ERROR, true},
        {0xE,        "CAM_API_STS_BUFFER_TOO_SMALL",         ERROR, true},
        {0xF,        "CAM_API_STS_NO_MEMORY",                ERROR, true},
        {0x10,       "CAM_API_STS_MEMORY_NO_ACCESS",         ERROR, true},
        {0x11,       "CAM_API_STS_NOT_IMPLEMENTED",          ERROR, true},
        {0x12,       "CAM_API_STS_TIMEOUT",                  ERROR, true},
        {0x13,       "CAM_API_STS_CAMERA_NOT_RESPONDING",    ERROR, true},
        {0x14,       "CAM_API_STS_EMPTY_COMPLETE_QUEUE",     WARN,  true},
        {0x15,       "CAM_API_STS_NOT_READY",                ERROR, false},
        {0x16,       "CAM_API_STS_ACCESS_MODE_SET_ERR",      ERROR, false},
        {0x101,      "CAM_API_STS_XML_LOAD_ERR",             ERROR, true},
        {0x102,      "CAM_API_STS_GENICAM_ERR",              ERROR, true},
        {0x103,      "CAM_API_STS_DLL_LOAD_ERR",             ERROR, false},
        {0x801,      "CAM_API_STS_INVALID_ADDRESS",          ERROR, true},
        {0x802,      "CAM_API_STS_WRITE_PROTECT",            ERROR, true},
        {0x803,      "CAM_API_STS_BAD_ALIGNMENT",            ERROR, true},
        {0x804,      "CAM_API_STS_ACCESS_DENIED",            ERROR, true},
        {0x805,      "CAM_API_STS_BUSY",                     ERROR, true},
        {0x806,      "CAM_API_STS_NOT_READABLE",             ERROR, false},
        {0x807,      "CAM_API_STS_NOT_WRITABLE",             ERROR, false},
        {0x808,      "CAM_API_STS_NOT_AVAILABLE",            ERROR, false},
        {0x1001,     "CAM_API_STS_REQUEST_TIMEOUT",          ERROR, true},
        {0x1002,     "CAM_API_STS_RESEND_TIMEOUT",           ERROR, false},
        {0x1003,     "CAM_API_STS_RESPONSE_TIMEOUT",         ERROR, false},
        {0x1004,     "CAM_API_STS_BUFFER_FULL",              ERROR, true},
        {0x1005,     "CAM_API_STS_UNEXPECTED_BUFFER_SIZE",   ERROR, true},
        {0x1006,     "CAM_API_STS_UNEXPECTED_NUMBER",        ERROR, false},
        {0x1007,     "CAM_API_STS_PACKET_STATUS_ERROR",      ERROR, true},
        {0x1008,     "CAM_API_STS_RESEND_NOT_IMPLEMENTED",   ERROR, false},
        {0x1009,     "CAM_API_STS_PACKET_UNAVAILABLE",       ERROR, false},
        {0x100A,     "CAM_API_STS_MISSING_PACKETS",          ERROR, true},
        {0x100B,     "CAM_API_STS_FLUSH_REQUESTED",          WARN,  true},
        {0x100C,     "CAM_API_STS_TOO_MANY_PACKET_MISSING",  ERROR, false},
        {0x100D,     "CAM_API_STS_FLUSHED_BY_D0EXIT",        ERROR, true},
        {0x100E,     "CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE", ERROR, true},
        {0x2001,     "CAM_API_STS_FILE_OPEN_ERROR",          ERROR, false},
        {0x2002,     "CAM_API_STS_FILE_WRITE_ERROR",         ERROR, false},
        {0x2003,     "CAM_API_STS_FILE_READ_ERROR",          ERROR, false},
        {0x2004,     "CAM_API_STS_FILE_NOT_FOUND",           ERROR, false},
        {0xA100,     "CAM_API_STS_DATA_DISCARDED",           ERROR, true},
        {0xFFFFFFFF, "CAM_API_STS_UNSUCCESSFUL",             ERROR, true},
    };
    // clang-format on
    return rows;
}

const StatusRow *FindStatusRow(CAM_API_STATUS value)
{
    const auto &rows = StatusRows();
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const StatusRow &row) { return row.value == value; });
    return found == rows.end() ? nullptr : &*found;
}

CAM_API_STATUS Translated(CAM_API_STATUS transportStatus)
{
    if (transportStatus == 0xB000)
        return 0x808;
    const StatusRow *row = FindStatusRow(transportStatus);
    return row != nullptr && row->fromTransport ? transportStatus : 0xFFFFFFFF;
}

std::string TransportName(CAM_API_STATUS transportStatus)
{
    if (transportStatus == 0xB000)
        return "U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE";
    const StatusRow *row = FindStatusRow(transportStatus);
    return row != nullptr && row->fromTransport ? std::string("U3V_") + row->name : "U3V_CAM_API_STS_???";
}

const std::vector<CAM_API_STATUS> &TransportStatuses()
{
    static const std::vector<CAM_API_STATUS> statuses = [] {
        std::set<CAM_API_STATUS> set{0xB000, 0xAFFF, 0xB001, 0x7FFFFFFF, 0x80000000};
        for (const StatusRow &row : StatusRows())
            set.insert({row.value - 1, row.value, row.value + 1});
        std::mt19937 random(1);
        for (int i = 0; i < 16; ++i)
            set.insert(static_cast<CAM_API_STATUS>(random()));
        set.erase(0);
        return std::vector<CAM_API_STATUS>(set.begin(), set.end());
    }();
    return statuses;
}

std::string EnterLine(const std::string &text) { return "INFO ,ENTER: " + text; }

std::string ExitLine(CAM_API_STATUS status, const std::string &text)
{
    const StatusRow *row = FindStatusRow(status);
    if (row == nullptr)
        return "no line: this is no status";
    const std::string suffix = status == 0 ? "" : '(' + std::string(row->name) + ')';
    return s_levelWords[row->level] + ("EXIT: " + text) + suffix;
}

} // namespace Orvi::Testing
