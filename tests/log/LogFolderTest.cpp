// The folder of a log file: made when only its last level is missing.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

#include <sys/stat.h>

namespace Orvi::Testing {

using LogFolderTest = LogTest;

struct FolderRow {
    const char *path; ///< below the test's folder
    int32_t result;
    const char *made; ///< folder that must be there afterwards
};

TEST_F(LogFolderTest, MakesTheLastLevelOnly)
{
    // clang-format off
    constexpr FolderRow rows[] = {
        {"log.txt",            1, "."},
        {"new/log.txt",        1, "new"},
        {"new/log.txt",        1, "new"}, // there already
        {"new/deeper/log.txt", 1, "new/deeper"},
        {"a/b/log.txt",        0, nullptr},
        {"with slash/",        1, "with slash"},
    };
    // clang-format on
    for (const FolderRow &row : rows) {
        EXPECT_EQ(CheckAndMakeDirectory(Path(row.path).c_str()), row.result) << row.path;
        if (row.made != nullptr) {
            EXPECT_TRUE(std::filesystem::is_directory(Path(row.made))) << row.path;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(Path("a")));
    EXPECT_FALSE(std::filesystem::exists(Path("log.txt"))) << "the file itself is not made";
}

TEST_F(LogFolderTest, ModeLeavesTheRestToTheUsersMask)
{
    static mode_t mode;
    static std::string path;
    calls->mkdir = [](const char *made, mode_t asked) {
        path = made;
        mode = asked;
        return 0;
    };
    EXPECT_EQ(CheckAndMakeDirectory(Path("new/log.txt").c_str()), 1);
    EXPECT_EQ(path, Path("new"));
    EXPECT_EQ(mode, 0777u);
    calls->mkdir = [](const char *, mode_t) { return -1; };
    EXPECT_EQ(CheckAndMakeDirectory(Path("new/log.txt").c_str()), 0);
}

TEST_F(LogFolderTest, BackslashSeparatesToo)
{
    EXPECT_EQ(CheckAndMakeDirectory((Path("new").string() + "\\log.txt").c_str()), 1);
    EXPECT_TRUE(std::filesystem::is_directory(Path("new")));
    // The last separator of either kind counts.
    EXPECT_EQ(CheckAndMakeDirectory((Path("x").string() + "\\y/log.txt").c_str()), 1);
    EXPECT_TRUE(std::filesystem::is_directory(Path("x\\y")));
}

TEST_F(LogFolderTest, FileAsFolderExists)
{
    WriteFile(Path("file"), "");
    EXPECT_EQ(CheckAndMakeDirectory(Path("file/log.txt").c_str()), 1) << "it exists, which is all that is asked";
    EXPECT_EQ(Log_InitializeFile(Path("file/log.txt").c_str(), false, 0), 0xFFFFFFFFu);
}

TEST_F(LogFolderTest, RootFolderIsRefused)
{
    for (const char *path : {"/log.txt", "\\log.txt", "/", "\\"})
        EXPECT_EQ(CheckAndMakeDirectory(path), 0) << path;
}

TEST_F(LogFolderTest, BareNameIsTheCurrentFolder)
{
    for (const char *path : {"log.txt", "l", ".."})
        EXPECT_EQ(CheckAndMakeDirectory(path), 1) << path;
}

TEST_F(LogFolderTest, PathBeyondAllLimits)
{
    for (const std::size_t size : {4095u, 4096u, 4097u, 5000u}) {
        const std::string path = Path("").string() + std::string(size, 'x') + "/log.txt";
        EXPECT_NE(Log_InitializeFile(path.c_str(), false, 0), 0u) << size;
    }
}

} // namespace Orvi::Testing
