#include "AtomicFile.h"

#include "Failure.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Orvi::Tool {
namespace {

Failure CannotWrite(const std::filesystem::path &path, int error)
{
    return {ExitCode::File, "cannot write " + path.string() + ": " + std::generic_category().message(error)};
}

Failure Exists(const std::filesystem::path &path)
{
    return {ExitCode::File, path.string() + " exists: say --force to overwrite it, or give another name"};
}

void MakeFolder(const std::filesystem::path &folder)
{
    std::error_code error;
    if (!folder.empty())
        std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure(ExitCode::File, "cannot make the folder " + folder.string() + ": " + error.message());
}

/// 0 or an errno.
int Rename(const std::filesystem::path &from, const std::filesystem::path &to, IfExists ifExists)
{
    const unsigned flags = ifExists == IfExists::Refuse ? RENAME_NOREPLACE : 0;
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0)
        return 0;
    // Some file systems cannot look and rename in one step.
    if (errno == EINVAL && flags != 0) {
        std::error_code ignored;
        if (std::filesystem::exists(to, ignored))
            return EEXIST;
        if (std::rename(from.c_str(), to.c_str()) == 0)
            return 0;
    }
    return errno;
}

} // namespace

AtomicFile::AtomicFile(std::filesystem::path path, IfExists ifExists)
    : path_(std::move(path)), temporary_(path_), ifExists_(ifExists)
{
    std::error_code ignored;
    if (ifExists_ == IfExists::Refuse && std::filesystem::exists(path_, ignored))
        throw Exists(path_);
    MakeFolder(path_.parent_path());
    temporary_ += ".part" + std::to_string(getpid());
    stream_ = std::fopen(temporary_.c_str(), "wxe");
    if (stream_ == nullptr)
        throw CannotWrite(temporary_, errno);
}

AtomicFile::~AtomicFile()
{
    if (stream_ != nullptr)
        std::fclose(stream_);
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

void AtomicFile::Commit()
{
    const bool failed = std::ferror(stream_) != 0;
    if (std::fclose(std::exchange(stream_, nullptr)) != 0 || failed)
        throw CannotWrite(path_, errno);
    if (const int error = Rename(temporary_, path_, ifExists_); error == EEXIST)
        throw Exists(path_);
    else if (error != 0)
        throw CannotWrite(path_, error);
    temporary_.clear();
}

} // namespace Orvi::Tool
