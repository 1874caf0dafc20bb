#include "transport/U3vCamApiDLL.h"

#include "log/UNI_Log.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include <dlfcn.h>
#include <sys/stat.h>

extern "C" {
#define UC_ENTRY(presence, tested, name, ...) CAM_API_STATUS (*pUc_##name)(UC_PARAMETERS(__VA_ARGS__)) = nullptr;
#include "transport/TransportEntries.inc"
}

namespace {

void *s_hDLL = nullptr;

enum Presence { Required, Optional };

struct EntryPoint {
    const char *symbol;
    void *pointer; ///< address of the function pointer
    Presence presence;

    void Store(void *function) const { std::memcpy(pointer, &function, sizeof function); }
    bool IsMissing() const
    {
        void *function;
        std::memcpy(&function, pointer, sizeof function);
        return function == nullptr;
    }
};

const EntryPoint s_entryPoints[] = {
#define UC_ENTRY(presence, tested, name, ...) {"UC_" #name, &pUc_##name, presence},
#include "transport/TransportEntries.inc"
};

constexpr Presence s_presences[] = {
#define UC_ENTRY(presence, tested, name, ...) presence,
#include "transport/TransportEntries.inc"
};
static_assert(std::size(s_presences) == 98 && std::ranges::count(s_presences, Required) == 87);

std::string TransportPath()
{
    constexpr char name[] = "lib/libOrviU3vCamApi_64.so";
    const char *pszSdk = std::getenv("ORVICAMSDK");
    if (pszSdk == nullptr)
        return std::string("/opt/OrviCamSDK/") + name;
    std::string path = pszSdk;
    if (path.empty() || path.back() != '/')
        path += '/';
    return path + name;
}

} // namespace

uint32_t OrviU3vCamApiDLL_Load()
{
    const std::string path = TransportPath();
    struct stat facts;
    if (stat(path.c_str(), &facts) != 0) {
        // The texts name a ".dll" and have no line feed: tools search the log for them as they are.
        if (Orvi::g_bUniLogInit)
            Orvi::_Uni_WriteLog2(CAM_LOG_LEVEL_DEBUG, "  OrviU3vCamApi.dll not exist.");
        return 0;
    }
    s_hDLL = dlopen(path.c_str(), RTLD_LAZY);
    if (s_hDLL == nullptr) {
        const char *pszReason = dlerror();
        Orvi::_Uni_WriteLog2(CAM_LOG_LEVEL_DEBUG, "  OrviU3vCamApi.dll load error. ");
        Orvi::_Uni_WriteLog2(CAM_LOG_LEVEL_DEBUG, pszReason);
        return 0;
    }
    dlerror();
    for (const EntryPoint &entry : s_entryPoints)
        entry.Store(dlsym(s_hDLL, entry.symbol));
    if (std::ranges::any_of(s_entryPoints,
                            [](const EntryPoint &entry) { return entry.presence == Required && entry.IsMissing(); }))
        OrviU3vCamApiDLL_Free();
    return 0;
}

void OrviU3vCamApiDLL_Free()
{
    if (s_hDLL == nullptr)
        return;
    dlclose(s_hDLL);
    s_hDLL = nullptr;
    for (const EntryPoint &entry : s_entryPoints)
        entry.Store(nullptr);
}

#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    CAM_API_STATUS _Uc_##name(UC_PARAMETERS(__VA_ARGS__))                                                              \
    {                                                                                                                  \
        if (s_hDLL == nullptr || pUc_##tested == nullptr)                                                              \
            return CAM_API_STS_UNSUCCESSFUL;                                                                           \
        return pUc_##name(UC_ARGUMENTS(__VA_ARGS__));                                                                  \
    }
#include "transport/TransportEntries.inc"
