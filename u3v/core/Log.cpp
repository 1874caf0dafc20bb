#include "u3v/core/Log.h"

#include <cstdarg>
#include <ctime>

namespace Orvi::U3v {
namespace {

std::FILE *Open(const char *path, const char *mode)
{
    std::FILE *file = std::fopen(path, mode);
    if (file == nullptr)
        throw StatusError(CAM_API_STS_FILE_OPEN_ERROR, std::string("cannot open the log file ") + path);
    return file;
}

std::string Line(std::uint32_t level, const char *text)
{
    static constexpr const char *names[] = {"DEBUG", "INFO", "WARN", "ERROR", "FATAL"};
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char head[64];
    const std::size_t length = std::strftime(head, sizeof head, "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(head + length, sizeof head - length, ".%06ld %-5s ", now.tv_nsec / 1000,
                  names[level < std::size(names) ? level : std::size(names) - 1]);
    return std::string(head) + text + '\n';
}

} // namespace

void Log::StartFile(const char *path, bool append, std::uint32_t level)
{
    std::lock_guard lock(mutex_);
    RequireDown();
    file_.reset(Open(path, append ? "a" : "w"));
    level_ = level;
}

void Log::StartRing(std::uint32_t size, std::uint32_t level)
{
    std::lock_guard lock(mutex_);
    RequireDown();
    if (size == 0)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "a log of no bytes");
    ring_.resize(size);
    ringEnd_ = 0;
    isRingFull_ = false;
    level_ = level;
}

void Log::Stop()
{
    std::lock_guard lock(mutex_);
    if (level_ == downLevel)
        throw StatusError(CAM_API_STS_UNSUCCESSFUL, "the log is not up");
    level_ = downLevel;
    file_.reset();
    ring_ = {};
}

void Log::Clear()
{
    std::lock_guard lock(mutex_);
    RequireRing();
    ringEnd_ = 0;
    isRingFull_ = false;
}

void Log::Save(const char *path) const
{
    std::lock_guard lock(mutex_);
    RequireRing();
    const File file(Open(path, "w"));
    bool isWritten = true;
    const auto put = [&](std::size_t from, std::size_t to) {
        isWritten = std::fwrite(ring_.data() + from, 1, to - from, file.get()) == to - from && isWritten;
    };
    if (isRingFull_)
        put(ringEnd_, ring_.size());
    put(0, ringEnd_);
    if (!isWritten || std::fflush(file.get()) != 0)
        throw StatusError(CAM_API_STS_FILE_WRITE_ERROR, std::string("cannot write the log file ") + path);
}

void Log::Write(std::uint32_t level, const char *text)
{
    if (!Takes(level))
        return;
    const std::string line = Line(level, text);
    std::lock_guard lock(mutex_);
    if (file_ != nullptr) {
        std::fputs(line.c_str(), file_.get());
        std::fflush(file_.get());
    } else if (!ring_.empty()) {
        AddToRing(line);
    }
}

void Log::RequireDown() const
{
    if (level_ != downLevel)
        throw StatusError(CAM_API_STS_ALREADY_INITIALIZED, "the log is up");
}

void Log::RequireRing() const
{
    if (ring_.empty())
        throw StatusError(CAM_API_STS_UNSUCCESSFUL, "the log is no ring");
}

void Log::AddToRing(const std::string &line)
{
    for (const char c : line) {
        ring_[ringEnd_] = c;
        if (++ringEnd_ == ring_.size()) {
            ringEnd_ = 0;
            isRingFull_ = true;
        }
    }
}

Log &DeviceLog()
{
    static Log log;
    return log;
}

Log &InterfaceLog()
{
    static Log log;
    return log;
}

void LogDevice(std::uint32_t level, const char *format, ...) noexcept
{
    if (!DeviceLog().Takes(level))
        return;
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    try {
        DeviceLog().Write(level, text);
    } catch (...) {
        return; // a lost line must not become a lost image
    }
}

} // namespace Orvi::U3v
