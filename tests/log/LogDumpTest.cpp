// Writing the ring to a file.

#include "tests/log/LogTest.h"

namespace Orvi::Testing {

using LogDumpTest = LogTest;

TEST_F(LogDumpTest, HeadIsThreeLinesAndAnEmptyOne)
{
    SetCalendar(1700000000);
    ASSERT_EQ(Log_InitializeMem(1000, 0), 0u);
    SetCalendar(1700003661);
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 0);
    EXPECT_EQ(FileBytes(), DumpHead(1700000000, 1700003661));
    Log_Write(1, "x");
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 0);
    EXPECT_EQ(FileBytes(), DumpHead(1700000000, 1700003661) + Apl("INFO ,", "x"));
}

TEST_F(LogDumpTest, AfterAFlushTheHeadIsAll)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    Log_Write(1, "x");
    Log_MemFlush();
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 0);
    EXPECT_EQ(FileBytes(), DumpHead(1000, 1000));
}

TEST_F(LogDumpTest, ReplacesTheFile)
{
    WriteFile(Path(), std::string(5000, 'x'));
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 0);
    EXPECT_EQ(FileBytes(), DumpHead(1000, 1000));
}

TEST_F(LogDumpTest, NeedsARing)
{
    EXPECT_EQ(Log_OutMemToFile(Path("a.txt").c_str()), -1);
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    EXPECT_EQ(Log_OutMemToFile(Path("a.txt").c_str()), -1);
    EXPECT_FALSE(std::filesystem::exists(Path("a.txt")));
}

TEST_F(LogDumpTest, MakesOneLevelOfFolder)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    EXPECT_EQ(Log_OutMemToFile(Path("new/log.txt").c_str()), 0);
    EXPECT_EQ(FileBytes("new/log.txt"), DumpHead(1000, 1000));
    EXPECT_EQ(Log_OutMemToFile(Path("not/there/log.txt").c_str()), 13);
    EXPECT_EQ(Log_OutMemToFile("/log.txt"), 13);
    EXPECT_EQ(Log_OutMemToFile(nullptr), 13);
    EXPECT_EQ(Log_Write(1, "x"), 0) << "the refusals hold no lock";
}

TEST_F(LogDumpTest, TooLittleSpaceIsRefusedWithoutTheLock)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    Log_Write(1, "x");
    WriteFile(Path(), "before");
    calls->statvfs = [](const char *, struct statvfs *facts) {
        *facts = {};
        facts->f_frsize = 4096;
        facts->f_bavail = 51199;
        return 0;
    };
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 15);
    EXPECT_EQ(FileBytes(), "before");
    EXPECT_EQ(Log_Write(1, "x"), 0);
}

TEST_F(LogDumpTest, FailingSpaceTestIsPassedOver)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    calls->statvfs = [](const char *, struct statvfs *facts) {
        *facts = {};
        return -1;
    };
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), 0);
    EXPECT_EQ(FileBytes(), DumpHead(1000, 1000));
}

} // namespace Orvi::Testing
