#include "log/LogStorage.h"

#include "foundation/TextBytes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <sched.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Orvi {

bool LogRing::Allocate(uint32_t uiSize)
{
    Free();
    s_logBuffer = static_cast<unsigned char *>(std::calloc(uiSize, 1));
    s_logBufferSize = s_logBuffer != nullptr ? uiSize : 0;
    return s_logBuffer != nullptr;
}

void LogRing::Free()
{
    std::free(s_logBuffer);
    s_logBuffer = nullptr;
    s_logBufferSize = 0;
    Flush();
}

void LogRing::Write(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t count = std::min<std::size_t>(text.size(), s_logBufferSize - s_logWritePointer);
        CopyBytes(reinterpret_cast<char *>(s_logBuffer) + s_logWritePointer, text.data(), count);
        text.remove_prefix(count);
        s_logWritePointer += static_cast<uint32_t>(count);
        if (s_logWritePointer == s_logBufferSize) {
            s_logWritePointer = 0;
            s_bBufferRound = true;
        }
    }
}

void LogRing::Flush()
{
    s_logWritePointer = 0;
    s_bBufferRound = false;
}

void LogRing::Dump(std::FILE *file) const
{
    const auto write = [&](uint32_t uiFirst, uint32_t uiEnd) {
        const void *zero = std::memchr(s_logBuffer + uiFirst, 0, uiEnd - uiFirst);
        const std::size_t count =
            zero != nullptr ? static_cast<std::size_t>(static_cast<const unsigned char *>(zero) - s_logBuffer) - uiFirst
                            : uiEnd - uiFirst;
        std::fwrite(s_logBuffer + uiFirst, 1, count, file);
        return zero == nullptr;
    };
    if (!s_bBufferRound || write(s_logWritePointer, s_logBufferSize))
        write(0, s_logWritePointer);
}

bool IsDiskNearlyFull(const char *pszPath)
{
    constexpr unsigned long leastKiB = 204800;
    struct statvfs disk;
    return pszPath != nullptr && statvfs(pszPath, &disk) == 0 && disk.f_frsize / 1024 * disk.f_bavail < leastKiB;
}

std::FILE *OpenPatiently(const char *pszPath, const char *pszMode)
{
    constexpr int attempts = 10;
    constexpr int patientAttempts = 7;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        if (std::FILE *file = std::fopen(pszPath, pszMode))
            return file;
        usleep(1000);
        if (attempt > patientAttempts)
            sched_yield();
    }
    return nullptr;
}

} // namespace Orvi
