#pragma once
// The one table of statuses: names, levels of their log lines, and which of them a transport may return.

#include "foundation/PublicApi.h"

namespace Orvi {

/// What is known of a status.
struct StatusFacts {
    CAM_API_STATUS value;
    const char *transportName; ///< the public name behind "U3V_"
    CAM_LOG_LEVEL level;       ///< of the EXIT line that carries it
    bool fromTransport;        ///< a transport may return it; it passes through unchanged

    constexpr const char *PublicName() const { return transportName + 4; }
};

/// Null for a value that is no status.
const StatusFacts *FindStatus(CAM_API_STATUS status) noexcept;

/// What an application gets for a transport's status.
CAM_API_STATUS TranslateTransportStatus(CAM_API_STATUS status) noexcept;

} // namespace Orvi
