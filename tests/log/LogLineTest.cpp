// The bytes of a line. Applications parse them.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

#include <gmock/gmock.h>

#include <sstream>
#include <thread>

namespace Orvi::Testing {

using LogLineTest = LogTest;

struct StampRow {
    timeval start, now;
    const char *stamp;
};

TEST_F(LogLineTest, StampIsTheElapsedTimeInMicroseconds)
{
    // clang-format off
    constexpr StampRow rows[] = {
        {{100, 0},      {100, 0},      "0.000000"},
        {{100, 0},      {100, 1},      "0.000001"},
        {{100, 0},      {112, 345},    "12.000345"},
        {{100, 999999}, {101, 0},      "0.000001"},
        {{100, 999999}, {112, 344},    "11.000345"},
        {{100, 1},      {101, 0},      "0.999999"},
        {{0, 0},        {1234567890, 123456}, "1234567890.123456"},
        // The clock was set back.
        {{100, 0},      {99, 500000},  "-0.500000"},
        {{100, 0},      {90, 0},       "-10.000000"},
        {{100, 250000}, {98, 0},       "-2.250000"},
    };
    // clang-format on
    for (const StampRow &row : rows) {
        SetClock(row.start.tv_sec, row.start.tv_usec);
        ASSERT_EQ(Log_InitializeMem(1000, 0), 0u);
        SetClock(row.now.tv_sec, row.now.tv_usec);
        EXPECT_EQ(Log_Write(1, "text"), 0);
        EXPECT_EQ(RingBytes(), Line(row.stamp, "APL", "INFO ,", "text"));
        EXPECT_EQ(Log_Terminate(), 0u);
    }
}

TEST_F(LogLineTest, StampFollowsTheClockFromLineToLine)
{
    // clang-format off
    constexpr StampRow rows[] = {
        {{}, {1000, 999999},       "0.499999"},
        {{}, {1001, 0},            "0.500000"},
        {{}, {1001, 499999},       "0.999999"},
        {{}, {1001, 500000},       "1.000000"},
        {{}, {1010, 499999},       "9.999999"},
        {{}, {1010, 500000},       "10.000000"},
        {{}, {1060, 499999},       "59.999999"},
        {{}, {1060, 500000},       "60.000000"},
        {{}, {1100, 499999},       "99.999999"},
        {{}, {1100, 500000},       "100.000000"},
        {{}, {4600, 500000},       "3600.000000"},
        // The clock was set: back a little, to before the start, far ahead, and right again.
        {{}, {1060, 500001},       "60.000001"},
        {{}, {1000, 499999},       "-0.000001"},
        {{}, {999, 500000},        "-1.000000"},
        {{}, {4294968295, 500001}, "4294967295.000001"},
        {{}, {4294968296, 750000}, "4294967296.250000"},
        {{}, {1100, 750000},       "100.250000"},
    };
    // clang-format on
    SetClock(1000, 500000);
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    std::string expected;
    for (const StampRow &row : rows) {
        SetClock(row.now.tv_sec, row.now.tv_usec);
        EXPECT_EQ(Log_Write(1, "text"), 0);
        expected += Line(row.stamp, "APL", "INFO ,", "text");
    }
    EXPECT_EQ(RingBytes(), expected);
}

TEST_F(LogLineTest, FileAndRingHoldTheSameBytes)
{
    const auto write = [&] {
        SetClock(1012, 345);
        Log_Write(3, "application");
        Uni_WriteLogApi(0, "library");
        Uni_OutLog(13, "EXIT: f");
        Uni_OutLog(0, "ENTER: f");
        Log_Write(2, "");
    };
    const std::string lines = Line("12.000345", "APL", "ERROR,", "application") +
                              Line("12.000345", "API", "DEBUG,", "library") +
                              Line("12.000345", "API", "ERROR,", "EXIT: f(CAM_API_STS_INVALID_PARAMETER)") +
                              Line("12.000345", "API", "INFO ,", "ENTER: f") + Line("12.000345", "APL", "WARN ,", "");
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    write();
    EXPECT_EQ(FileBytes(), lines);
    Log_Terminate();
    SetClock(1000, 0);
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    write();
    EXPECT_EQ(RingBytes(), lines);
}

TEST_F(LogLineTest, WordOfEachLevel)
{
    const char *const words[] = {"DEBUG,", "INFO ,", "WARN ,", "ERROR,", "FATAL,"};
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    for (uint32_t level = 0; level < 5; ++level) {
        EXPECT_EQ(_Uni_WriteLog(level, true, "x"), 0);
        EXPECT_EQ(RingBytes(), Api(words[level], "x"));
        Log_MemFlush();
        EXPECT_EQ(_Uni_WriteLog(level, false, "x"), 0);
        EXPECT_EQ(RingBytes(), Apl(words[level], "x"));
        Log_MemFlush();
    }
}

TEST_F(LogLineTest, NamesTheThreadThatWrites)
{
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    std::string expected = Apl("INFO ,", "main");
    Log_Write(1, "main");
    std::thread([&] {
        Log_Write(1, "other");
        expected += Apl("INFO ,", "other");
    }).join();
    EXPECT_EQ(RingBytes(), expected);
}

TEST_F(LogLineTest, TextIsNoFormat)
{
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    Log_Write(1, "100% %s %n %d\tand \xC3\xA4");
    EXPECT_EQ(RingBytes(), Apl("INFO ,", "100% %s %n %d\tand \xC3\xA4"));
}

TEST_F(LogLineTest, RealClockGivesTheSameShape)
{
    calls->gettimeofday = nullptr;
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    Log_Write(4, "text");
    EXPECT_THAT(RingBytes(), ::testing::MatchesRegex("[0-9]+\\.[0-9]{6},APL FATAL,ThreadId:0x[0-9a-f]{8},text\n"));
}

TEST_F(LogLineTest, ThreadsDoNotMixTheirLines)
{
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    constexpr int count = 200;
    const auto write = [](const char *text) {
        for (int i = 0; i < count; ++i)
            Log_Write(1, text);
    };
    std::thread first(write, "first thread"), second(write, "second");
    first.join();
    second.join();
    const auto isWhole = ::testing::MatchesRegex("0\\.000000,APL INFO ,ThreadId:0x[0-9a-f]{8},(first thread|second)");
    std::istringstream stream(FileBytes());
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    EXPECT_EQ(lines.size(), std::size_t{2 * count});
    EXPECT_THAT(lines, ::testing::Each(isWhole));
}

} // namespace Orvi::Testing
