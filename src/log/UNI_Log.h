#pragma once
// The library's diagnostic log: one per process, a file or a ring in memory. The functions that applications call are
// in the public header.

#include "foundation/PublicApi.h"
#include "log/LogLine.h"

namespace Orvi {

/// True while the log is up. Every writer tests it, and callers test it before they format a line.
ORVI_EXPORT extern bool g_bUniLogInit;

/// Writes an ENTER line (status 0) or an EXIT line: the status's name follows the text, and its level is the line's. A
/// value that is no status writes nothing.
ORVI_EXPORT void Uni_OutLog(uint32_t uiStatus, const char *pszText);
void Uni_OutLog(uint32_t uiStatus, LogLine &line);

/// Writes a line of the library's own.
ORVI_EXPORT int32_t Uni_WriteLogApi(uint32_t uiLevel, const char *pszText);

/// Writes one line: time, origin, level, thread, text. Results as Log_Write().
ORVI_EXPORT int32_t _Uni_WriteLog(uint32_t uiLevel, bool bApi, const char *pszText);

/// Writes the text as it is, without head and line feed; results as Log_Write(). The ring takes 512 bytes at most.
ORVI_EXPORT int32_t _Uni_WriteLog2(uint32_t uiLevel, const char *pszText);

ORVI_EXPORT uint32_t Uni_GetLogLevel();

/// 1 when the folder of the file exists or could be made (its last level only), else 0.
ORVI_EXPORT int32_t CheckAndMakeDirectory(const char *pszPath);

} // namespace Orvi
