// Files that the transport wrote into the cache folder are shared with all users at the end.

#include "tests/system/SystemTest.h"

#include "tests/support/ChildProcess.h"

#include <sys/stat.h>

namespace Orvi::Testing {

class CacheFolderTest : public SystemTest {
  protected:
    void MakeFile(const std::string &name)
    {
        WriteFile(CacheFolder() / name, "");
        chmod((CacheFolder() / name).c_str(), 0600);
    }

    mode_t ModeOf(const std::string &name)
    {
        struct stat facts = {};
        stat((CacheFolder() / name).c_str(), &facts);
        return facts.st_mode & 07777;
    }
};

TEST_F(CacheFolderTest, NamesOfSixCharactersAndMoreAreShared)
{
    for (const char *name : {"1", "12345", "123456", "1234567", ".12345", "folder/inside-it"})
        MakeFile(name);
    chmod((CacheFolder() / "folder").c_str(), 0700);
    const mode_t before = ModeOf(".");
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(ModeOf("1"), 0600u);
    EXPECT_EQ(ModeOf("12345"), 0600u);
    EXPECT_EQ(ModeOf("123456"), 0777u);
    EXPECT_EQ(ModeOf("1234567"), 0777u);
    EXPECT_EQ(ModeOf(".12345"), 0777u);
    EXPECT_EQ(ModeOf("folder"), 0777u);
    EXPECT_EQ(ModeOf("folder/inside-it"), 0600u) << "one level only";
    EXPECT_EQ(ModeOf("."), before);
}

TEST_F(CacheFolderTest, HomeMayEndInASlash)
{
    MakeFile("123456");
    const ScopedVariable home("HOME", Home().string() + "/");
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(ModeOf("123456"), 0777u);
}

TEST_F(CacheFolderTest, FilesOfTheSessionAreShared)
{
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    MakeFile("camera.xml");
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(ModeOf("camera.xml"), 0777u);
}

TEST_F(CacheFolderTest, SharedEvenWhenTheCacheIsTurnedOff)
{
    MakeFile("camera.xml");
    EXPECT_TRUE(PassesInChild([&] {
        Configure("GENICAM_CACHE=NO_CACHE\n");
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(Sys_Terminate(), 0u);
    }));
    EXPECT_EQ(ModeOf("camera.xml"), 0777u);
}

TEST_F(CacheFolderTest, NoFolderNoMatter)
{
    EXPECT_EQ(Sys_Terminate(), 0u);
    WriteFile(CacheFolder(), "a file where the folder should be");
    EXPECT_EQ(Sys_Terminate(), 0u);
    const ScopedVariable home("HOME", std::nullopt);
    EXPECT_EQ(Sys_Terminate(), 0u);
}

} // namespace Orvi::Testing
