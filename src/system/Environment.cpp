// The environment variables that the transport reads, and the folder where it keeps descriptions of cameras.

#include "system/UNI_Sys.h"

#include "log/UNI_Log.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>

#include <dirent.h>
#include <sys/stat.h>

namespace Orvi {

namespace {

std::string WithSlash(std::string path)
{
    if (path.empty() || path.back() != '/')
        path += '/';
    return path;
}

bool MakeFolder(const std::string &path)
{
    struct stat facts;
    return stat(path.c_str(), &facts) == 0 || mkdir(path.c_str(), 0777) == 0;
}

} // namespace

void SetEnvVariable()
{
    if (std::getenv("ORVICAMSDK") == nullptr)
        setenv("ORVICAMSDK", "/opt/OrviCamSDK/", 1);

    const char *pszHome = std::getenv("HOME");
    if (!s_configuration.s_bUseGenICamCache || pszHome == nullptr)
        return;
    std::string folder = WithSlash(pszHome);
    for (const char *pszLevel : {"OrviCamSDK", "/genicam", "/cache"}) {
        folder += pszLevel;
        if (!MakeFolder(folder)) {
            if (g_bUniLogInit)
                _Uni_WriteLog2(CAM_LOG_LEVEL_DEBUG, "  genicam cache folder not exist.");
            return;
        }
    }
    setenv("GENICAM_CACHE_V3_0", folder.c_str(), 1);
}

void ChangeMode_GenicamCache()
{
    constexpr std::size_t leastName = 6; // leaves out "." and ".."
    const char *pszHome = std::getenv("HOME");
    if (pszHome == nullptr)
        return;
    const std::string folder = WithSlash(pszHome) + "OrviCamSDK/genicam/cache";
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.c_str()), &closedir);
    if (directory == nullptr)
        return;
    while (const dirent *entry = readdir(directory.get()))
        if (std::strlen(entry->d_name) >= leastName)
            chmod((folder + "/" + entry->d_name).c_str(), 0777);
}

} // namespace Orvi
