// Starting and ending the log.

#include "tests/log/LogTest.h"
#include "tests/support/ChildProcess.h"

#include "log/UNI_Log.h"

#include <sys/resource.h>

namespace Orvi::Testing {

using LogStartTest = LogTest;

TEST_F(LogStartTest, FileIsMadeAtOnce)
{
    EXPECT_EQ(Log_InitializeFile(Path().c_str(), false, 2), 0u);
    EXPECT_TRUE(g_bUniLogInit);
    EXPECT_EQ(Uni_GetLogLevel(), 2u);
    EXPECT_TRUE(std::filesystem::exists(Path()));
    EXPECT_EQ(FileBytes(), "");
    EXPECT_EQ(Log_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
}

TEST_F(LogStartTest, AppendsOrTruncates)
{
    WriteFile(Path(), "before\n");
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), true, 0), 0u);
    Log_Write(1, "appended");
    Log_Terminate();
    EXPECT_EQ(FileBytes(), "before\n" + Apl("INFO ,", "appended"));

    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    EXPECT_EQ(FileBytes(), "") << "cut before the first line";
    Log_Write(1, "first");
    Log_Write(1, "second");
    Log_Terminate();
    EXPECT_EQ(FileBytes(), Apl("INFO ,", "first") + Apl("INFO ,", "second"));
}

TEST_F(LogStartTest, FileIsCompleteAfterEveryLine)
{
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    std::string expected;
    for (int i = 0; i < 3; ++i) {
        Log_Write(1, "line");
        EXPECT_EQ(FileBytes(), expected += Apl("INFO ,", "line"));
    }
    std::filesystem::remove(Path());
    Log_Write(1, "line");
    EXPECT_EQ(FileBytes(), Apl("INFO ,", "line")) << "a removed file is made again";
}

TEST_F(LogStartTest, SecondStartIsRefusedInEveryOrder)
{
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 1), 0u);
    EXPECT_EQ(Log_InitializeFile(Path("other.txt").c_str(), false, 0), 2u);
    EXPECT_EQ(Log_InitializeFile(nullptr, false, 0), 2u);
    EXPECT_EQ(Log_InitializeMem(100, 0), 2u);
    EXPECT_EQ(Log_InitializeMem(0, 0), 2u);
    EXPECT_FALSE(std::filesystem::exists(Path("other.txt")));
    EXPECT_EQ(Uni_GetLogLevel(), 1u);
    Log_Write(1, "x");
    EXPECT_EQ(FileBytes(), Apl("INFO ,", "x"));
    Log_Terminate();

    ASSERT_EQ(Log_InitializeMem(100, 3), 0u);
    EXPECT_EQ(Log_InitializeMem(200, 0), 2u);
    EXPECT_EQ(Log_InitializeFile(Path("other.txt").c_str(), false, 0), 2u);
    EXPECT_FALSE(std::filesystem::exists(Path("other.txt")));
    EXPECT_EQ(Uni_GetLogLevel(), 3u);
}

TEST_F(LogStartTest, StartsAgainAfterTheEnd)
{
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
        EXPECT_EQ(Log_Terminate(), 0u);
        EXPECT_EQ(Log_Terminate(), 0xFFFFFFFFu);
        ASSERT_EQ(Log_InitializeFile(Path().c_str(), true, 0), 0u);
        EXPECT_EQ(Log_Terminate(), 0u);
    }
}

TEST_F(LogStartTest, BadArguments)
{
    EXPECT_EQ(Log_InitializeFile(nullptr, false, 0), 13u);
    EXPECT_EQ(Log_InitializeFile("/log.txt", false, 0), 13u) << "the root folder is refused";
    EXPECT_EQ(Log_InitializeFile("\\log.txt", false, 0), 13u);
    EXPECT_EQ(Log_InitializeFile(Path("not/there/log.txt").c_str(), false, 0), 13u);
    EXPECT_EQ(Log_InitializeMem(0, 0), 13u);
    EXPECT_FALSE(g_bUniLogInit);
}

TEST_F(LogStartTest, FileThatCannotBeOpened)
{
    std::filesystem::create_directory(Path("folder"));
    EXPECT_EQ(Log_InitializeFile(Path("folder").c_str(), false, 0), 0xFFFFFFFFu);
    EXPECT_EQ(Log_InitializeFile(Path("folder").c_str(), true, 0), 0xFFFFFFFFu);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
}

TEST_F(LogStartTest, RingWithoutMemory)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's own address space is larger than the limit that this needs";
#else
    EXPECT_TRUE(PassesInChild([] {
        const rlimit limit{1 << 30, 1 << 30};
        ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
        EXPECT_EQ(Log_InitializeMem(0xFFFFFFFF, 0), 15u);
        EXPECT_FALSE(g_bUniLogInit);
        EXPECT_EQ(Log_MemFlush(), 0xFFFFFFFFu);
        EXPECT_EQ(Log_InitializeMem(100, 0), 0u) << "a failed start leaves the log down";
        EXPECT_EQ(Log_Write(1, "x"), 0);
    }));
#endif
}

TEST_F(LogStartTest, BareFileNameLiesInTheCurrentFolder)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Path("."));
    EXPECT_EQ(Log_InitializeFile("bare.txt", false, 0), 0u);
    Log_Write(1, "x");
    std::filesystem::current_path(before);
    EXPECT_EQ(FileBytes("bare.txt"), Apl("INFO ,", "x"));
}

} // namespace Orvi::Testing
