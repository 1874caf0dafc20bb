#include "transport/TransportCall.h"

namespace Orvi {

CAM_API_STATUS ReportFailure(const char *failureText, CAM_API_STATUS status)
{
    DEBUG_PRINT(failureText, U3vCamApiStatusString(status));
    return TranslateTransportStatus(status);
}

CAM_API_STATUS ReportNodeFailure(const char *failureText, CAM_API_STATUS status)
{
    const CAM_API_STATUS translated = ReportFailure(failureText, status);
    if (status == CAM_API_STS_GENICAM_ERR)
        Misc_SetLastGenICamError(1);
    return translated;
}

} // namespace Orvi
