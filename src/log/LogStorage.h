#pragma once
// Where log lines go: the ring in memory, and files with their space check and retries.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace Orvi {

/// A ring of bytes without terminators. Not synchronised.
class LogRing {
  public:
    /// False when there is no memory for it; the ring is then gone.
    bool Allocate(uint32_t uiSize);
    void Free();
    bool IsAllocated() const { return s_logBuffer != nullptr; }

    void Write(std::string_view text);
    /// Forgets what was written; the bytes stay until they are overwritten.
    void Flush();
    /// Writes the bytes out, oldest first, up to the first zero byte.
    void Dump(std::FILE *file) const;

  private:
    unsigned char *s_logBuffer = nullptr;
    uint32_t s_logBufferSize = 0;
    uint32_t s_logWritePointer = 0; ///< index of the next byte
    bool s_bBufferRound = false;    ///< the ring has wrapped since the last flush
};

/// True when the path's file system is known and has less than 200 MiB left.
bool IsDiskNearlyFull(const char *pszPath);

/// Opens a file, up to ten times with a pause: another process may hold it for a moment. Null after the last failure.
std::FILE *OpenPatiently(const char *pszPath, const char *pszMode);

} // namespace Orvi
