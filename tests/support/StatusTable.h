#pragma once
// The statuses as applications know them, written down a second time: the tests compare the library with this table,
// not with its own.

#include "OrviCamApi.h"

#include <string>
#include <vector>

namespace Orvi::Testing {

struct StatusRow {
    CAM_API_STATUS value;
    const char *name;
    uint32_t level;     ///< of the EXIT line that carries it
    bool fromTransport; ///< passes unchanged from the transport to the application
};

const std::vector<StatusRow> &StatusRows();
const StatusRow *FindStatusRow(CAM_API_STATUS value);

/// What an application must get for a transport's status.
CAM_API_STATUS Translated(CAM_API_STATUS transportStatus);
/// What diagnostic texts must call a transport's status.
std::string TransportName(CAM_API_STATUS transportStatus);
/// Statuses worth returning from a transport: all that have a name, their neighbours, and some at random.
const std::vector<CAM_API_STATUS> &TransportStatuses();

/// A line of the log as LogCapture::Take() gives it.
std::string EnterLine(const std::string &text);
std::string ExitLine(CAM_API_STATUS status, const std::string &text);

} // namespace Orvi::Testing
