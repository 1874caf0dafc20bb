// The transport's own two logs: of its devices (LogCam) and of its interface (Log).

#include "transport/TransportInterface.h"
#include "u3v/api/ApiCall.h"
#include "u3v/core/Log.h"

using namespace Orvi::U3v;

namespace {

CAM_API_STATUS StartRing(Log &log, uint32_t size, uint32_t level)
{
    return ApiCall([&] { log.StartRing(size, level); });
}

CAM_API_STATUS StartFile(Log &log, const char *path, bool append, uint32_t level)
{
    return ApiCall([&] {
        Require(path);
        log.StartFile(path, append, level);
    });
}

CAM_API_STATUS Write(Log &log, uint32_t level, const char *text)
{
    return ApiCall([&] {
        Require(text);
        log.Write(level, text);
    });
}

CAM_API_STATUS Save(Log &log, const char *path)
{
    return ApiCall([&] {
        Require(path);
        log.Save(path);
    });
}

CAM_API_STATUS Stop(Log &log)
{
    return ApiCall([&] { log.Stop(); });
}

CAM_API_STATUS Clear(Log &log)
{
    return ApiCall([&] { log.Clear(); });
}

} // namespace

// clang-format off
CAM_API_STATUS UC_LogCamInitializeMem(uint32_t uiSize, uint32_t uiLevel)                           { return StartRing(DeviceLog(), uiSize, uiLevel); }
CAM_API_STATUS UC_LogCamInitializeFile(const char *pszPath, bool bAppend, uint32_t uiLevel)        { return StartFile(DeviceLog(), pszPath, bAppend, uiLevel); }
CAM_API_STATUS UC_LogCamTerminate()                                                                { return Stop(DeviceLog()); }
CAM_API_STATUS UC_LogCamWrite(uint32_t uiLevel, const char *pszText)                               { return Write(DeviceLog(), uiLevel, pszText); }
CAM_API_STATUS UC_LogCamMemFlush()                                                                 { return Clear(DeviceLog()); }
CAM_API_STATUS UC_LogCamOutMemToFile(const char *pszPath)                                          { return Save(DeviceLog(), pszPath); }

CAM_API_STATUS UC_LogInitializeMem(uint32_t uiSize, uint32_t uiLevel)                              { return StartRing(InterfaceLog(), uiSize, uiLevel); }
CAM_API_STATUS UC_LogInitializeFile(const char *pszPath, bool bAppend, uint32_t uiLevel)           { return StartFile(InterfaceLog(), pszPath, bAppend, uiLevel); }
CAM_API_STATUS UC_LogTerminate()                                                                   { return Stop(InterfaceLog()); }
CAM_API_STATUS UC_LogWrite(uint32_t uiLevel, const char *pszText)                                  { return Write(InterfaceLog(), uiLevel, pszText); }
CAM_API_STATUS UC_LogMemFlush()                                                                    { return Clear(InterfaceLog()); }
CAM_API_STATUS UC_LogOutMemToFile(const char *pszPath)                                             { return Save(InterfaceLog(), pszPath); }
// clang-format on
