// The transport's own logs, started and written through this library. They have no ENTER and EXIT lines.

#include "transport/TransportCall.h"

using namespace Orvi;

namespace {

constexpr int32_t s_iU3v = 1;

// The transport's failures are swallowed. Both families report under the name of the API log's function.
template <class... Parameters>
CAM_API_STATUS ForwardLog(int32_t iInterface, const TransportEntry<Parameters...> &entry,
                          std::type_identity_t<Parameters>... arguments)
{
    if (iInterface != s_iU3v)
        return CAM_API_STS_SUCCESS;
    try {
        Forward(entry, arguments...);
        return CAM_API_STS_SUCCESS;
    } catch (...) {
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

constexpr char s_initializeMem[] = "(Log_InitializeMemEx) _Uc_LogInitializeMem with Status %s\n";
constexpr char s_initializeFile[] = "(Log_InitializeFileEx) _Uc_LogInitializeFile with Status %s\n";
constexpr char s_terminate[] = "(Log_TerminateEx) _Uc_LogTerminate with Status %s\n";
constexpr char s_write[] = "(Log_WriteEx) _Uc_LogWrite with Status %s\n";
constexpr char s_memFlush[] = "(Log_MemFlushEx) _Uc_LogMemFlush with Status %s\n";
constexpr char s_outMemToFile[] = "(Log_OutMemToFileEx) _Uc_LogOutMemToFile with Status %s\n";

} // namespace

CAM_API_STATUS Log_InitializeMemEx(int32_t iInterface, uint32_t uiSize, uint32_t uiLevel)
{
    return ForwardLog(iInterface, Uc::LogInitializeMem.ReportedAs(s_initializeMem), uiSize, uiLevel);
}

CAM_API_STATUS Log_InitializeMemCamEx(int32_t iInterface, uint32_t uiSize, uint32_t uiLevel)
{
    return ForwardLog(iInterface, Uc::LogCamInitializeMem.ReportedAs(s_initializeMem), uiSize, uiLevel);
}

CAM_API_STATUS Log_InitializeFileEx(int32_t iInterface, const char *pszPath, bool bAppend, uint32_t uiLevel)
{
    return ForwardLog(iInterface, Uc::LogInitializeFile.ReportedAs(s_initializeFile), pszPath, bAppend, uiLevel);
}

CAM_API_STATUS Log_InitializeFileCamEx(int32_t iInterface, const char *pszPath, bool bAppend, uint32_t uiLevel)
{
    return ForwardLog(iInterface, Uc::LogCamInitializeFile.ReportedAs(s_initializeFile), pszPath, bAppend, uiLevel);
}

CAM_API_STATUS Log_TerminateEx(int32_t iInterface)
{
    return ForwardLog(iInterface, Uc::LogTerminate.ReportedAs(s_terminate));
}

CAM_API_STATUS Log_TerminateCamEx(int32_t iInterface)
{
    return ForwardLog(iInterface, Uc::LogCamTerminate.ReportedAs(s_terminate));
}

CAM_API_STATUS Log_WriteEx(int32_t iInterface, uint32_t uiLevel, const char *pszText)
{
    return ForwardLog(iInterface, Uc::LogWrite.ReportedAs(s_write), uiLevel, pszText);
}

CAM_API_STATUS Log_WriteCamEx(int32_t iInterface, uint32_t uiLevel, const char *pszText)
{
    return ForwardLog(iInterface, Uc::LogCamWrite.ReportedAs(s_write), uiLevel, pszText);
}

CAM_API_STATUS Log_MemFlushEx(int32_t iInterface)
{
    return ForwardLog(iInterface, Uc::LogMemFlush.ReportedAs(s_memFlush));
}

CAM_API_STATUS Log_MemFlushCamEx(int32_t iInterface)
{
    return ForwardLog(iInterface, Uc::LogCamMemFlush.ReportedAs(s_memFlush));
}

CAM_API_STATUS Log_OutMemToFileEx(int32_t iInterface, const char *pszPath)
{
    return ForwardLog(iInterface, Uc::LogOutMemToFile.ReportedAs(s_outMemToFile), pszPath);
}

CAM_API_STATUS Log_OutMemToFileCamEx(int32_t iInterface, const char *pszPath)
{
    return ForwardLog(iInterface, Uc::LogCamOutMemToFile.ReportedAs(s_outMemToFile), pszPath);
}
