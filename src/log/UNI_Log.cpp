#include "log/UNI_Log.h"

#include "foundation/U3vCamApiString.h"
#include "foundation/Version.h"
#include "log/LogStorage.h"

#include <ctime>
#include <string_view>

#include <pthread.h>
#include <sys/time.h>

namespace Orvi {

bool g_bUniLogInit = false;

namespace {

enum LogType : uint32_t { LOG_TYPE_NONE = 0, LOG_TYPE_MEMORY = 1, LOG_TYPE_FILE = 2 };

constexpr std::size_t s_maxPath = 4096;
constexpr std::size_t s_maxRawTextInRing = 512;
constexpr int32_t s_iNotWritten = -1;
constexpr int32_t s_iBadLevel = CAM_API_STS_INVALID_PARAMETER;
constexpr int32_t s_iDiskNearlyFull = CAM_API_STS_NO_MEMORY;

uint32_t s_logType = LOG_TYPE_NONE;
uint32_t s_logLevel = CAM_LOG_LEVEL_DEBUG;
LogRing s_logRing;
char s_logFileName[s_maxPath];
pthread_mutex_t s_logLock = PTHREAD_MUTEX_INITIALIZER;
timeval s_nStart;    ///< origin of the time stamps
time_t s_timerStart; ///< wall-clock time for the head of a dump

void Start(LogType type, uint32_t uiLevel)
{
    s_logType = type;
    s_logLevel = uiLevel;
    pthread_mutex_init(&s_logLock, nullptr);
    gettimeofday(&s_nStart, nullptr);
    s_timerStart = time(nullptr);
    g_bUniLogInit = true;
}

LogTime Elapsed()
{
    timeval now;
    gettimeofday(&now, nullptr);
    LogTime elapsed = {now.tv_sec - s_nStart.tv_sec,
                       static_cast<int32_t>(now.tv_usec) - static_cast<int32_t>(s_nStart.tv_usec)};
    if (elapsed.microseconds < 0) {
        elapsed.microseconds += 1000000;
        --elapsed.seconds;
    }
    return elapsed;
}

/// Appends bytes to the log. The two failures leave the lock held: from then on the log is frozen, and whoever writes
/// next waits for ever. Programs in the field rely on the log being cut there rather than having a gap.
int32_t Store(std::string_view bytes, std::size_t maxInRing)
{
    pthread_mutex_lock(&s_logLock);
    if (s_logType == LOG_TYPE_MEMORY) {
        s_logRing.Write(bytes.substr(0, maxInRing));
    } else if (s_logType == LOG_TYPE_FILE) {
        if (IsDiskNearlyFull(s_logFileName))
            return s_iDiskNearlyFull;
        std::FILE *file = OpenPatiently(s_logFileName, "a");
        if (file == nullptr)
            return s_iNotWritten;
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    pthread_mutex_unlock(&s_logLock);
    return 0;
}

int32_t WriteLine(uint32_t uiLevel, LogOrigin origin, LogLine &line, const char *status)
{
    if (!g_bUniLogInit)
        return s_iNotWritten;
    if (s_logLevel > uiLevel)
        return 0;
    if (uiLevel > CAM_LOG_LEVEL_FATAL)
        return s_iBadLevel;
    return Store(line.Finish(Elapsed(), origin, uiLevel, status), std::string_view::npos);
}

std::string_view View(const char *pszText) { return pszText != nullptr ? pszText : std::string_view(); }

bool HasRing() { return s_logType == LOG_TYPE_MEMORY && s_logRing.IsAllocated(); }

} // namespace

void Uni_OutLog(uint32_t uiStatus, const char *pszText)
{
    if (!g_bUniLogInit)
        return;
    LogLine line(View(pszText));
    Uni_OutLog(uiStatus, line);
}

void Uni_OutLog(uint32_t uiStatus, LogLine &line)
{
    if (uiStatus == CAM_API_STS_SUCCESS)
        WriteLine(CAM_LOG_LEVEL_INFO, LogOrigin::Api, line, nullptr);
    else if (const StatusFacts *facts = FindStatus(uiStatus))
        WriteLine(facts->level, LogOrigin::Api, line, facts->PublicName());
}

int32_t Uni_WriteLogApi(uint32_t uiLevel, const char *pszText) { return _Uni_WriteLog(uiLevel, true, pszText); }

int32_t _Uni_WriteLog(uint32_t uiLevel, bool bApi, const char *pszText)
{
    LogLine line(View(pszText));
    return WriteLine(uiLevel, bApi ? LogOrigin::Api : LogOrigin::Application, line, nullptr);
}

int32_t _Uni_WriteLog2(uint32_t uiLevel, const char *pszText)
{
    if (!g_bUniLogInit)
        return s_iNotWritten;
    if (s_logLevel > uiLevel)
        return 0;
    return Store(View(pszText), s_maxRawTextInRing);
}

uint32_t Uni_GetLogLevel() { return s_logLevel; }

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS Log_InitializeFile(const char *pszPath, bool bAppend, uint32_t uiLevel)
{
    if (g_bUniLogInit)
        return CAM_API_STS_ALREADY_INITIALIZED;
    if (pszPath == nullptr || CheckAndMakeDirectory(pszPath) == 0)
        return CAM_API_STS_INVALID_PARAMETER;
    std::FILE *file = std::fopen(pszPath, bAppend ? "a" : "w");
    if (file == nullptr)
        return CAM_API_STS_UNSUCCESSFUL;
    std::fclose(file);
    s_logFileName[std::string_view(pszPath).copy(s_logFileName, s_maxPath - 1)] = '\0';
    Start(LOG_TYPE_FILE, uiLevel);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS Log_InitializeMem(uint32_t uiSize, uint32_t uiLevel)
{
    if (s_logType != LOG_TYPE_NONE)
        return CAM_API_STS_ALREADY_INITIALIZED;
    if (uiSize == 0)
        return CAM_API_STS_INVALID_PARAMETER;
    if (!s_logRing.Allocate(uiSize))
        return CAM_API_STS_NO_MEMORY;
    Start(LOG_TYPE_MEMORY, uiLevel);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS Log_Terminate(void)
{
    if (!g_bUniLogInit)
        return CAM_API_STS_UNSUCCESSFUL;
    pthread_mutex_lock(&s_logLock);
    s_logType = LOG_TYPE_NONE;
    s_logRing.Free();
    s_logFileName[0] = '\0';
    pthread_mutex_unlock(&s_logLock);
    pthread_mutex_destroy(&s_logLock);
    g_bUniLogInit = false;
    return CAM_API_STS_SUCCESS;
}

int32_t Log_Write(uint32_t uiLevel, const char *pszText) { return _Uni_WriteLog(uiLevel, false, pszText); }

CAM_API_STATUS Log_MemFlush(void)
{
    if (!HasRing())
        return CAM_API_STS_UNSUCCESSFUL;
    pthread_mutex_lock(&s_logLock);
    s_logRing.Flush();
    pthread_mutex_unlock(&s_logLock);
    return CAM_API_STS_SUCCESS;
}

int32_t Log_OutMemToFile(const char *pszPath)
{
    if (!HasRing())
        return s_iNotWritten;
    if (IsDiskNearlyFull(pszPath))
        return s_iDiskNearlyFull;
    if (CheckAndMakeDirectory(pszPath) == 0)
        return CAM_API_STS_INVALID_PARAMETER;
    pthread_mutex_lock(&s_logLock);
    std::FILE *file = OpenPatiently(pszPath, "w");
    if (file == nullptr)
        return s_iNotWritten; // the lock stays held, as after a write that fails
    // ctime ends its text with a line feed; the blank line after the second time is part of the format.
    char szTime[32];
    const time_t now = time(nullptr);
    std::fprintf(file, "OrviCamApi Ver.: %s\n", s_apiVersion);
    std::fprintf(file, "Start time     : %s", ctime_r(&s_timerStart, szTime));
    std::fprintf(file, "Now   time     : %s\n", ctime_r(&now, szTime));
    s_logRing.Dump(file);
    std::fclose(file);
    pthread_mutex_unlock(&s_logLock);
    return 0;
}
