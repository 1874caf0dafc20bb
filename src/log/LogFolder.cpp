// The folder that a log file goes to.

#include "log/UNI_Log.h"

#include <cstring>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace Orvi {

namespace {

constexpr std::size_t s_maxScan = 4096;

bool DirectoryExists(const char *pszPath)
{
    struct stat facts;
    return stat(pszPath, &facts) == 0;
}

} // namespace

int32_t CheckAndMakeDirectory(const char *pszPath)
{
    if (pszPath == nullptr)
        return 0;
    const std::string_view path(pszPath, strnlen(pszPath, s_maxScan));
    std::size_t end = path.find_last_of("/\\");
    if (end == std::string_view::npos)
        return 1; // a bare file name: the current folder
    // For a file in the root folder this leaves an empty name, which cannot be made: such a log is refused.
    const std::string directory(path.substr(0, end));
    return DirectoryExists(directory.c_str()) || mkdir(directory.c_str(), 0777) == 0 ? 1 : 0;
}

} // namespace Orvi
