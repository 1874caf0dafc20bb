// "OrviCamSDK.cfg". Lines look like these:
//
//     OrviCamApi,FILE,DEBUG,PATH="${HOME}/log"        a log file
//     OrviCamApi,MEMORY,1024,INFO,PATH=/tmp/          a log in memory, written into the folder at the end
//     GENICAM_CACHE=NO_CACHE                          no cache folder
//
// Words are found anywhere in a line and removed by counting characters, any separator being one character: files in
// the field rely on what that lets through, so the counts stay as they are.

#include "system/UNI_Sys.h"

#include "log/UNI_Log.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

#include <libgen.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvi {

Configuration s_configuration;

namespace {

constexpr char s_fileName[] = "OrviCamSDK.cfg";

bool Contains(const std::string &text, std::string_view word) { return text.find(word) != std::string::npos; }

bool Exists(const std::string &path)
{
    struct stat facts;
    return stat(path.c_str(), &facts) == 0;
}

/// The file beside the running program, else the one below the SDK; empty when there is none.
std::string FindFile()
{
    char szProgram[4096] = {};
    if (readlink("/proc/self/exe", szProgram, sizeof szProgram - 1) > 0) {
        std::string candidate = std::string(dirname(szProgram)) + "/" + s_fileName;
        if (Exists(candidate))
            return candidate;
    }
    const char *pszSdk = std::getenv("ORVICAMSDK");
    if (pszSdk == nullptr)
        return {};
    const std::string candidate = std::string(pszSdk) + "/" + "lib/" + s_fileName;
    return Exists(candidate) ? candidate : std::string();
}

void DeleteAll(std::string &text, std::string_view characters)
{
    std::erase_if(text, [&](char c) { return characters.find(c) != std::string_view::npos; });
}

/// Replaces one "${NAME}". The counts are right when the "${" stands behind an opening quote, which is how it is to be
/// written; anywhere else the name comes out short or long.
void ExpandVariable(std::string &path)
{
    const std::size_t begin = path.find("${");
    const std::size_t end = path.find('}');
    if (begin == std::string::npos || end == std::string::npos)
        return;
    const char *pszValue = std::getenv(path.substr(begin + 2, end - 3).c_str());
    if (pszValue == nullptr)
        return;
    path.erase(begin, end);
    path.insert(0, pszValue);
    for (std::size_t twice; (twice = path.find("//")) != std::string::npos;)
        path.erase(twice, 1);
}

std::string FileNameOfNow()
{
    const time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    char szName[128];
    std::snprintf(szName, sizeof szName, "OrviCamApi_%04d%02d%02d_%02d%02d%02d.txt", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return szName;
}

/// Cuts the text at the word that names the level.
std::optional<uint32_t> TakeLevel(std::string &text)
{
    uint32_t uiLevel = CAM_LOG_LEVEL_DEBUG;
    for (const char *pszWord : {"DEBUG", "INFO", "WARN", "ERROR", "FATAL"}) {
        if (const std::size_t found = text.find(pszWord); found != std::string::npos) {
            text.erase(found);
            return uiLevel;
        }
        ++uiLevel;
    }
    return std::nullopt;
}

/// What is stored before a line is known to be complete stays stored when the line is then rejected.
void ReadLine(std::string text)
{
    constexpr std::size_t keywordAndSeparator = 11;
    constexpr long leastMemory = 32;

    if (const std::size_t comment = text.find("//"); comment != std::string::npos)
        text.erase(comment);
    if (Contains(text, "GENICAM_CACHE")) {
        if (Contains(text, "NO_CACHE"))
            s_configuration.s_bUseGenICamCache = false;
        return;
    }
    if (!Contains(text, "OrviCamApi"))
        return;
    text.erase(0, keywordAndSeparator);

    const bool bMemory = Contains(text, "MEMORY");
    if (!bMemory && !Contains(text, "FILE"))
        return;
    s_configuration.s_bCamMemoryType = bMemory;
    text.erase(0, bMemory ? 7 : 5);

    const std::size_t path = text.find("PATH=");
    if (path == std::string::npos)
        return;
    std::string &camLogPath = s_configuration.s_camLogPath;
    camLogPath = text.substr(path + 5);
    ExpandVariable(camLogPath);
    DeleteAll(camLogPath, "\"\n\r");
    if (camLogPath.empty())
        return;
    if (camLogPath.back() != '/')
        camLogPath += '/';
    camLogPath += FileNameOfNow();

    const std::optional<uint32_t> level = TakeLevel(text);
    if (!level)
        return;
    DeleteAll(text, " ,");

    CAM_API_STATUS status;
    if (bMemory) {
        const long size = std::strtol(text.c_str(), nullptr, 10);
        if (size < leastMemory)
            return;
        status = Log_InitializeMem(static_cast<uint32_t>(size), *level);
    } else {
        status = Log_InitializeFile(camLogPath.c_str(), false, *level);
    }
    if (status == CAM_API_STS_SUCCESS)
        s_configuration.s_bCamOutDebugLog = true;
}

} // namespace

void LoadConfiguration()
{
    const std::string path = FindFile();
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(path.empty() ? nullptr : std::fopen(path.c_str(), "r"),
                                                                &std::fclose);
    if (file == nullptr)
        return;
    // A line longer than the buffer counts as several.
    char szLine[256];
    while (std::fgets(szLine, sizeof szLine, file.get()) != nullptr)
        ReadLine(szLine);
}

} // namespace Orvi
