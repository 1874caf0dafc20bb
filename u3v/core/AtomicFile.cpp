#include "u3v/core/AtomicFile.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace Orvi::U3v {
namespace {

[[noreturn]] void Fail(const char *what, const std::string &path, int error)
{
    throw std::system_error(error, std::generic_category(), std::string(what) + path);
}

class File {
  public:
    File(const std::string &path, int flags) : descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
    ~File() { Close(); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    int Descriptor() const { return descriptor_; }
    bool Close()
    {
        const int descriptor = descriptor_;
        descriptor_ = -1;
        return descriptor < 0 || close(descriptor) == 0;
    }

  private:
    int descriptor_;
};

bool WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

// In the same folder, since a file can be renamed within one file system only.
std::string TemporaryName(const std::string &path)
{
    static std::atomic<unsigned> count = 0;
    return path + '.' + std::to_string(getpid()) + '-' + std::to_string(count++) + ".tmp";
}

} // namespace

void WriteFileAtomically(const std::string &path, std::string_view bytes)
{
    constexpr const char *cannotWrite = "cannot write the file ";
    const std::string temporary = TemporaryName(path);
    int error = 0;
    {
        File file(temporary, O_WRONLY | O_CREAT | O_TRUNC);
        if (!file.IsOpen() || !WriteAll(file.Descriptor(), bytes) || fsync(file.Descriptor()) != 0 || !file.Close())
            error = errno;
    }
    if (error == 0 && std::rename(temporary.c_str(), path.c_str()) != 0)
        error = errno;
    if (error == 0)
        return;
    unlink(temporary.c_str());
    Fail(cannotWrite, path, error);
}

std::string ReadWholeFile(const std::string &path)
{
    constexpr const char *cannotRead = "cannot read the file ";
    constexpr std::size_t maxSize = 64U << 20;
    const File file(path, O_RDONLY);
    if (!file.IsOpen())
        Fail(cannotRead, path, errno);
    std::string bytes;
    char part[65536];
    for (;;) {
        const ssize_t count = read(file.Descriptor(), part, sizeof part);
        if (count < 0 && errno != EINTR)
            Fail(cannotRead, path, errno);
        if (count == 0)
            return bytes;
        if (bytes.size() > maxSize)
            Fail(cannotRead, path, EFBIG);
        bytes.append(part, count < 0 ? 0 : static_cast<std::size_t>(count));
    }
}

} // namespace Orvi::U3v
