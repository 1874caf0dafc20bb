#pragma once
// The transport's two logs: of its devices and of its interface. Each is down, a file or a ring in memory.

#include "u3v/core/Status.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvi::U3v {

class Log {
  public:
    /// Throw StatusError: 0x2 when the log is up, 0xD for a bad argument, 0x2001 for a file that cannot be opened.
    void StartFile(const char *path, bool append, std::uint32_t level);
    void StartRing(std::uint32_t size, std::uint32_t level);
    /// These throw 0xFFFFFFFF when the log is not up, or is no ring.
    void Stop();
    void Clear();
    void Save(const char *path) const;

    bool Takes(std::uint32_t level) const { return level >= level_.load(std::memory_order_relaxed); }
    /// A line with the time in front. Below the log's level, or with the log down, it does nothing.
    void Write(std::uint32_t level, const char *text);

  private:
    static constexpr std::uint32_t downLevel = UINT32_MAX;
    struct CloseFile {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, CloseFile>;

    void RequireDown() const;
    void RequireRing() const;
    void AddToRing(const std::string &line);

    std::atomic<std::uint32_t> level_ = downLevel;
    mutable std::mutex mutex_;
    File file_;
    std::vector<char> ring_;
    std::size_t ringEnd_ = 0; // where the next byte goes
    bool isRingFull_ = false;
};

Log &DeviceLog();
Log &InterfaceLog();

[[gnu::format(printf, 2, 3)]] void LogDevice(std::uint32_t level, const char *format, ...) noexcept;

} // namespace Orvi::U3v
