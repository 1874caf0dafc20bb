// The last GenICam error, kept until the next one: it survives Sys_Terminate().

#include "foundation/CsAutoLock.h"
#include "log/UNI_Log.h"
#include "transport/CallFrame.h"

#include <cstdio>

namespace Orvi {

ORVI_EXPORT CMyCriticalSection s_csGenLastError;
ORVI_EXPORT CAM_GENICAM_ERROR s_genICamErrMessage = {};

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Misc_SetLastGenICamError(uint32_t uiFlag)
{
    try {
        const CCsAutoLock lock(s_csGenLastError, true);
        if (uiFlag != 1)
            return CAM_API_STS_INVALID_PARAMETER;
        const CAM_API_STATUS status = _Uc_Misc_GetLastGenICamError(&s_genICamErrMessage);
        if (g_bUniLogInit) {
            char szLine[512];
            std::snprintf(szLine, sizeof szLine, "  GenICamError:%s\n", s_genICamErrMessage.pszMessage);
            _Uni_WriteLog2(CAM_LOG_LEVEL_INFO, szLine);
        }
        return status;
    } catch (...) {
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

CAM_API_STATUS Misc_GetLastGenICamError(CAM_GENICAM_ERROR *pError)
{
    return GuardedCall(__func__, s_nameOnly, [&]() -> CAM_API_STATUS {
        const CCsAutoLock lock(s_csGenLastError, true);
        *pError = s_genICamErrMessage;
        return CAM_API_STS_SUCCESS;
    });
}
