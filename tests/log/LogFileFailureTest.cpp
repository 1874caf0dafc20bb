// A full disk, and a file that cannot be opened: the log freezes, because the failing writer keeps the lock.

#include "tests/log/BlockedThread.h"
#include "tests/log/LogTest.h"
#include "tests/support/ChildProcess.h"

#include "log/UNI_Log.h"

namespace Orvi::Testing {

namespace {

struct statvfs s_disk;
std::string s_diskOf;
std::string s_pauses; ///< 'u' for a sleep, 'y' for a yield
std::filesystem::path s_madeAtThirdPause;

int AnswerDisk(const char *path, struct statvfs *facts)
{
    s_diskOf = path;
    *facts = s_disk;
    return 0;
}

int NotePause(unsigned microseconds)
{
    s_pauses += microseconds == 1000 ? 'u' : '?';
    if (!s_madeAtThirdPause.empty() && s_pauses.size() == 3)
        std::filesystem::create_directory(s_madeAtThirdPause);
    return 0;
}

int NoteYield()
{
    s_pauses += 'y';
    return 0;
}

} // namespace

class LogFileFailureTest : public LogTest {
  protected:
    LogFileFailureTest()
    {
        s_disk = {};
        s_pauses.clear();
        s_madeAtThirdPause.clear();
        calls->usleep = NotePause;
        calls->sched_yield = NoteYield;
    }

    void SetDisk(unsigned long fragment, unsigned long available)
    {
        s_disk = {};
        s_disk.f_frsize = fragment;
        s_disk.f_bavail = available;
        calls->statvfs = AnswerDisk;
    }

    void StartFile() { ASSERT_EQ(Log_InitializeFile(Path("folder/log.txt").c_str(), false, 0), 0u); }
    void RemoveFolder() { std::filesystem::remove_all(Path("folder")); }

    /// Nobody gets through any more, not even when the reason is gone.
    void ExpectFrozen()
    {
        calls->statvfs = nullptr;
        std::filesystem::create_directory(Path("folder"));
        const std::string before = FileBytes("folder/log.txt");
        static const BlockedThread application([] { Log_Write(4, "late"); });
        static const BlockedThread library([] { Uni_OutLog(0, "late"); });
        static const BlockedThread raw([] { _Uni_WriteLog2(4, "late"); });
        for (const BlockedThread *thread : {&application, &library, &raw})
            EXPECT_TRUE(thread->IsAsleepForGood());
        EXPECT_EQ(FileBytes("folder/log.txt"), before);
    }
};

struct DiskRow {
    unsigned long fragment, available;
    bool isEnough;
};

TEST_F(LogFileFailureTest, TwoHundredMebibytesMustBeFree)
{
    // clang-format off
    constexpr DiskRow rows[] = {
        {4096, 51200,  true},  {4096, 51199,     false}, {1024, 204800, true},  {1024, 204799, false},
        {1536, 204800, true},  {1536, 204799,    false}, // the fragment counts in whole KiB
        {1023, 1UL << 40, false}, {512, 1UL << 40, false}, {4096, 0, false},
    };
    // clang-format on
    for (const DiskRow &row : rows)
        EXPECT_TRUE(PassesInChild([&] {
            StartFile();
            SetDisk(row.fragment, row.available);
            EXPECT_EQ(Log_Write(1, "x"), row.isEnough ? 0 : 15);
            EXPECT_EQ(FileBytes("folder/log.txt"), row.isEnough ? Apl("INFO ,", "x") : "");
            EXPECT_EQ(s_diskOf, Path("folder/log.txt"));
        })) << row.fragment
            << " * " << row.available;
}

TEST_F(LogFileFailureTest, FullDiskFreezesTheLog)
{
    EXPECT_TRUE(PassesInChild([&] {
        StartFile();
        EXPECT_EQ(Log_Write(1, "good"), 0);
        SetDisk(4096, 51199);
        EXPECT_EQ(Log_Write(1, "x"), 15);
        EXPECT_EQ(s_pauses, "") << "a full disk is not tried again";
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, FullDiskUnderARawTextFreezesTheLog)
{
    EXPECT_TRUE(PassesInChild([&] {
        StartFile();
        SetDisk(4096, 51199);
        EXPECT_EQ(_Uni_WriteLog2(1, "x"), 15);
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, FileThatCannotBeOpenedIsTriedTenTimesAndFreezesTheLog)
{
    EXPECT_TRUE(PassesInChild([&] {
        StartFile();
        RemoveFolder();
        EXPECT_EQ(Log_Write(1, "x"), -1);
        EXPECT_EQ(s_pauses, "uuuuuuuuyuyuy");
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, RawTextIsTriedTenTimesToo)
{
    EXPECT_TRUE(PassesInChild([&] {
        StartFile();
        RemoveFolder();
        EXPECT_EQ(_Uni_WriteLog2(1, "x"), -1);
        EXPECT_EQ(s_pauses, "uuuuuuuuyuyuy");
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, LinesOfTheLibraryFreezeItAlike)
{
    EXPECT_TRUE(PassesInChild([&] {
        StartFile();
        RemoveFolder();
        Uni_OutLog(0, "ENTER: f");
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, FileThatComesBackInTimeIsWritten)
{
    StartFile();
    RemoveFolder();
    s_madeAtThirdPause = Path("folder");
    EXPECT_EQ(Log_Write(1, "x"), 0);
    EXPECT_EQ(s_pauses, "uuu");
    EXPECT_EQ(FileBytes("folder/log.txt"), Apl("INFO ,", "x"));
    EXPECT_EQ(Log_Write(1, "y"), 0) << "the lock is free";
}

TEST_F(LogFileFailureTest, FilteredAndBadLevelsDoNotTouchTheLock)
{
    EXPECT_TRUE(PassesInChild([&] {
        ASSERT_EQ(Log_InitializeFile(Path("folder/log.txt").c_str(), false, 2), 0u);
        RemoveFolder();
        EXPECT_EQ(Log_Write(2, "x"), -1);
        EXPECT_EQ(Log_Write(1, "filtered"), 0);
        EXPECT_EQ(Log_Write(5, "bad level"), 13);
        Uni_OutLog(0xB000, "no status");
    }));
}

TEST_F(LogFileFailureTest, DumpThatCannotBeOpenedFreezesTheRing)
{
    EXPECT_TRUE(PassesInChild([&] {
        ASSERT_EQ(Log_InitializeMem(1000, 0), 0u);
        std::filesystem::create_directory(Path("folder"));
        EXPECT_EQ(Log_OutMemToFile(Path("folder").c_str()), -1);
        EXPECT_EQ(s_pauses, "uuuuuuuuyuyuy");
        ExpectFrozen();
    }));
}

TEST_F(LogFileFailureTest, RingNeedsNoDisk)
{
    ASSERT_EQ(Log_InitializeMem(1000, 0), 0u);
    SetDisk(4096, 0);
    EXPECT_EQ(Log_Write(1, "x"), 0);
    EXPECT_EQ(_Uni_WriteLog2(1, "y"), 0);
    calls->statvfs = nullptr;
    EXPECT_EQ(RingBytes(), Apl("INFO ,", "x") + "y");
}

} // namespace Orvi::Testing
