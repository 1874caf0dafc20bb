#pragma once
// How a transport call is made from a function's body: forwarded, and its failure reported and translated.

#include "foundation/U3vCamApiString.h"
#include "transport/U3vCamApiDLL.h"

#include <type_traits>

namespace Orvi {

/// A forwarder with the text that a failure hands to DEBUG_PRINT.
template <class... Parameters>
struct TransportEntry {
    CAM_API_STATUS (*call)(Parameters...);
    const char *failureText;

    constexpr TransportEntry ReportedAs(const char *text) const { return {call, text}; }
};

template <class... Parameters>
TransportEntry(CAM_API_STATUS (*)(Parameters...), const char *) -> TransportEntry<Parameters...>;

/// The entries by their names: Uc::Cam_Open and so on.
namespace Uc {
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    inline constexpr TransportEntry name = {&_Uc_##name, "(_Uc_" #name ") Status %s\n"};
#include "transport/TransportEntries.inc"
} // namespace Uc

/// Hands the text, filled with the status's name, to DEBUG_PRINT and answers the status for the application.
[[gnu::cold]] CAM_API_STATUS ReportFailure(const char *failureText, CAM_API_STATUS status);

/// As ReportFailure(); a node's refusal also fetches the GenICam error for Misc_GetLastGenICamError().
[[gnu::cold]] CAM_API_STATUS ReportNodeFailure(const char *failureText, CAM_API_STATUS status);

template <class... Parameters>
CAM_API_STATUS Forward(const TransportEntry<Parameters...> &entry, std::type_identity_t<Parameters>... arguments)
{
    const CAM_API_STATUS status = entry.call(arguments...);
    return status == CAM_API_STS_SUCCESS ? status : ReportFailure(entry.failureText, status);
}

template <class... Parameters>
CAM_API_STATUS ForwardToNodeMap(const TransportEntry<Parameters...> &entry,
                                std::type_identity_t<Parameters>... arguments)
{
    const CAM_API_STATUS status = entry.call(arguments...);
    return status == CAM_API_STS_SUCCESS ? status : ReportNodeFailure(entry.failureText, status);
}

} // namespace Orvi
