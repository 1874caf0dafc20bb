// Where the transport is looked for.

#include "tests/transport/TransportTest.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include <dlfcn.h>

namespace Orvi::Testing {

namespace {

Lines s_looked; ///< files that the loader has asked for
Lines s_opened;
int s_mode;
void *(*s_openNext)(const char *path, int mode);

bool IsTransport(const char *path) { return std::string_view(path).ends_with("libOrviU3vCamApi_64.so"); }

int NoteStat(const char *path, struct stat *facts)
{
    if (!IsTransport(path))
        return Real::stat(path, facts);
    s_looked.emplace_back(path);
    errno = ENOENT;
    return -1;
}

int PretendStat(const char *path, struct stat *facts)
{
    NoteStat(path, facts);
    return 0;
}

void *NoteOpen(const char *path, int mode)
{
    s_opened.emplace_back(path);
    s_mode = mode;
    return s_openNext(path, mode);
}

} // namespace

struct PathRow {
    std::optional<std::string> sdk;
    const char *path;
};

class LoaderPathTest : public TransportTest {
  protected:
    LoaderPathTest()
    {
        s_looked.clear();
        s_opened.clear();
        calls->stat = NoteStat;
        s_openNext = std::exchange(systemCalls.dlopen, NoteOpen);
    }
};

TEST_F(LoaderPathTest, IsBelowTheSdk)
{
    // clang-format off
    const PathRow rows[] = {
        {"/usr/local/sdk",  "/usr/local/sdk/lib/libOrviU3vCamApi_64.so"},
        {"/usr/local/sdk/", "/usr/local/sdk/lib/libOrviU3vCamApi_64.so"},
        {"/sdk//",          "/sdk//lib/libOrviU3vCamApi_64.so"},
        {"sdk",             "sdk/lib/libOrviU3vCamApi_64.so"},
        {"/",               "/lib/libOrviU3vCamApi_64.so"},
        {"",                "/lib/libOrviU3vCamApi_64.so"},
        {std::nullopt,      "/opt/OrviCamSDK/lib/libOrviU3vCamApi_64.so"},
    };
    // clang-format on
    for (const PathRow &row : rows) {
        const ScopedVariable sdk("ORVICAMSDK", row.sdk);
        EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
        EXPECT_EQ(s_looked, Lines{row.path});
        EXPECT_EQ(s_opened, Lines{}) << "what is not there is not opened";
        s_looked.clear();
        ExpectUnloaded();
    }
}

TEST_F(LoaderPathTest, FileThatExistsIsOpenedLazilyAndForTheLibraryAlone)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    calls->stat = PretendStat;
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    EXPECT_EQ(s_opened, Lines{ORVI_STUB_SDK "/lib/libOrviU3vCamApi_64.so"});
    EXPECT_EQ(s_mode, RTLD_LAZY);
    ExpectLoaded();
}

TEST_F(LoaderPathTest, PathBeyondAllLimitsIsNotThere)
{
    calls->stat = nullptr;
    for (const std::size_t size : {4000u, 4095u, 4096u, 100000u}) {
        const ScopedVariable sdk("ORVICAMSDK", "/" + std::string(size, 'x'));
        EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
        ExpectUnloaded();
    }
}

} // namespace Orvi::Testing
