// The variables that a start leaves for the transport, and the folder that one of them names.

#include "tests/system/SystemTest.h"

#include "tests/support/ChildProcess.h"

#include <cerrno>
#include <cstring>

namespace Orvi::Testing {

using EnvironmentTest = SystemTest;

namespace {

std::vector<std::string> s_asked;
Lines s_made;

int HideDefaultSdk(const char *path, struct stat *facts)
{
    s_asked.emplace_back(path);
    if (std::strncmp(path, "/opt/OrviCamSDK", 15) == 0) {
        errno = ENOENT;
        return -1;
    }
    return Real::stat(path, facts);
}

} // namespace

TEST_F(EnvironmentTest, UnsetSdkBecomesTheDefault)
{
    const ScopedVariable sdk("ORVICAMSDK", std::nullopt);
    calls->stat = HideDefaultSdk;
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0x103u);
    EXPECT_EQ(Variable("ORVICAMSDK"), "/opt/OrviCamSDK/");
}

TEST_F(EnvironmentTest, SdkThatIsSetStays)
{
    for (const std::string &value : {std::string(""), Sdk().string(), Sdk().string() + "/"}) {
        const ScopedVariable sdk("ORVICAMSDK", value);
        Sys_Initialize(SYS_INIT_GEV);
        EXPECT_EQ(Variable("ORVICAMSDK"), value);
    }
}

TEST_F(EnvironmentTest, DefaultSdkIsSearchedForAConfigurationFromTheSecondStartOn)
{
    const ScopedVariable sdk("ORVICAMSDK", std::nullopt);
    const std::string file = "/opt/OrviCamSDK//lib/OrviCamSDK.cfg";
    calls->stat = HideDefaultSdk;
    s_asked.clear();
    Sys_Initialize(SYS_INIT_U3V);
    EXPECT_THAT(s_asked, ::testing::Not(::testing::Contains(::testing::StartsWith("/opt/OrviCamSDK//lib"))));
    EXPECT_THAT(s_asked, ::testing::Contains("/opt/OrviCamSDK/lib/libOrviU3vCamApi_64.so"));
    s_asked.clear();
    Sys_Initialize(SYS_INIT_U3V);
    EXPECT_THAT(s_asked, ::testing::Contains(file));
}

TEST_F(EnvironmentTest, CacheFolderIsMadeAndNamed)
{
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_TRUE(std::filesystem::is_directory(CacheFolder()));
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), CacheFolder());
}

TEST_F(EnvironmentTest, CacheFolderThatExistsIsNamed)
{
    std::filesystem::create_directories(CacheFolder());
    WriteFile(CacheFolder() / "kept", "x");
    const ScopedVariable cache("GENICAM_CACHE_V3_0", "/somewhere/else");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), CacheFolder());
    EXPECT_EQ(ReadFile(CacheFolder() / "kept"), "x");
}

TEST_F(EnvironmentTest, HomeMayEndInASlash)
{
    const ScopedVariable home("HOME", Home().string() + "/");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), CacheFolder());
}

TEST_F(EnvironmentTest, WithoutAHomeThereIsNoCacheFolder)
{
    const ScopedVariable home("HOME", std::nullopt);
    StartLog();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), "(unset)");
    EXPECT_EQ(TakeLog().size(), 2u);
    EXPECT_EQ(Sys_Terminate(), 0u);
}

TEST_F(EnvironmentTest, FoldersAreMadeOneByOneForAllUsers)
{
    for (const std::string &home : {Home().string(), std::string("")}) { // an empty home is the root
        const ScopedVariable variable("HOME", home);
        s_made.clear();
        calls->mkdir = [](const char *path, mode_t mode) {
            EXPECT_EQ(mode, 0777u);
            s_made.emplace_back(path);
            return 0;
        };
        EXPECT_EQ(Sys_Initialize(SYS_INIT_GEV), 0x103u);
        EXPECT_EQ(s_made,
                  (Lines{home + "/OrviCamSDK", home + "/OrviCamSDK/genicam", home + "/OrviCamSDK/genicam/cache"}));
        EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), home + "/OrviCamSDK/genicam/cache");
    }
}

/// What stands in the way of the cache folder.
struct ObstacleRow {
    const char *name;
    void (*build)(const std::filesystem::path &home);
};

TEST_F(EnvironmentTest, CacheFolderThatCannotBeMadeIsReportedAndNotNamed)
{
    const ObstacleRow rows[] = {
        {"no home", [](const std::filesystem::path &home) { std::filesystem::remove(home); }},
        {"first level", [](const std::filesystem::path &home) { WriteFile(home / "OrviCamSDK", ""); }},
        {"second level", [](const std::filesystem::path &home) { WriteFile(home / "OrviCamSDK/genicam", ""); }},
    };
    for (const ObstacleRow &row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove_all(Home());
        std::filesystem::create_directory(Home());
        row.build(Home());
        const ScopedVariable cache("GENICAM_CACHE_V3_0", "before");
        StartLog();
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_THAT(TakeLog(),
                    ::testing::ElementsAre(EnterLine("Sys_Initialize"),
                                           RunsInto("  genicam cache folder not exist.", 0, "Sys_Initialize")));
        EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), "before");
        StopLog();
        Sys_Terminate();
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u) << "nor with the log down";
        Sys_Terminate();
    }
}

TEST_F(EnvironmentTest, ConfigurationTurnsTheCacheOffForGood)
{
    EXPECT_TRUE(PassesInChild([&] {
        Configure("// nothing\nGENICAM_CACHE=NO_CACHE\n");
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), "(unset)");
        EXPECT_FALSE(std::filesystem::exists(Home() / "OrviCamSDK"));
        Sys_Terminate();
        Configure("GENICAM_CACHE=CACHE\nGENICAM_CACHE=1\n");
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), "(unset)") << "there is no word that turns it on again";
    }));
}

struct CacheRow {
    const char *text;
    bool isOff;
};

TEST_F(EnvironmentTest, WordsThatTurnTheCacheOff)
{
    constexpr CacheRow rows[] = {
        {"GENICAM_CACHE=NO_CACHE", true},
        {"NO_CACHE GENICAM_CACHE", true},
        {"x NO_CACHExGENICAM_CACHEx", true},
        {"OrviCamApi GENICAM_CACHE NO_CACHE", true},
        {"GENICAM_CACHE", false},
        {"GENICAM_CACHE=no_cache", false},
        {"NO_CACHE", false},
        {"//GENICAM_CACHE=NO_CACHE", false},
        {"GENICAM_CACHE=//NO_CACHE", false},
        {"genicam_cache=NO_CACHE", false},
    };
    for (const CacheRow &row : rows)
        EXPECT_TRUE(PassesInChild([&] {
            Configure(row.text);
            EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
            EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), row.isOff ? "(unset)" : CacheFolder().string());
        })) << row.text;
}

} // namespace Orvi::Testing
