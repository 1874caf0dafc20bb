// The log that the configuration file starts: from the ENTER line of the start to the EXIT line of the end.

#include "tests/system/ConfigurationOutcome.h"

#include <sstream>

namespace Orvi::Testing {

using ConfiguredLogTest = ConfigurationOutcome;

namespace {

Lines LinesOf(const std::string &text)
{
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(WithoutHead(line));
    return lines;
}

const Lines session{EnterLine("Sys_Initialize"), ExitLine(0, "Sys_Initialize"), EnterLine("Sys_Terminate"),
                    ExitLine(0, "Sys_Terminate")};

} // namespace

TEST_F(ConfiguredLogTest, FileHoldsTheWholeSession)
{
    Configure("OrviCamApi,FILE,DEBUG,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_EQ(LinesOf(ReadFile(Logs() / fileName)), session);
}

TEST_F(ConfiguredLogTest, FileOfAnEarlierSessionIsReplaced)
{
    WriteFile(Logs() / fileName, "before\n");
    Configure("OrviCamApi,FILE,DEBUG,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(LinesOf(ReadFile(Logs() / fileName)), session);
}

TEST_F(ConfiguredLogTest, RingIsWrittenOutAtTheEnd)
{
    Configure("OrviCamApi,MEMORY,4096,DEBUG,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_TRUE(std::filesystem::is_empty(Logs()));
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    Lines lines = LinesOf(ReadFile(Logs() / fileName));
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[0], "OrviCamApi Ver.: 1.1.0");
    EXPECT_EQ(lines[1], "Start time     : Sat Feb  3 04:05:06 2001");
    EXPECT_EQ(lines[2], "Now   time     : Sat Feb  3 04:05:06 2001");
    EXPECT_EQ(lines[3], "");
    EXPECT_EQ(Lines(lines.begin() + 4, lines.end()), session);
}

TEST_F(ConfiguredLogTest, FailedStartLeavesTheLogUpUntilTheEnd)
{
    RemoveTransport();
    Configure("OrviCamApi,MEMORY,4096,WARN,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0x103u);
    EXPECT_TRUE(g_bUniLogInit);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_EQ(LinesOf(ReadFile(Logs() / fileName)).back(),
              "ERROR,EXIT: Sys_Initialize (U3v)(CAM_API_STS_UNSUCCESSFUL)");
}

TEST_F(ConfiguredLogTest, ExceptionAtTheEndFinishesTheLogToo)
{
    Configure("OrviCamApi,MEMORY,4096,WARN,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    stub.ThrowNext(Entry::Sys_Terminate, Stub::Thrown::RuntimeError);
    EXPECT_EQ(Sys_Terminate(), 0xFFFFFFFFu);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_EQ(LinesOf(ReadFile(Logs() / fileName)).back(), "ERROR,EXIT: Sys_Terminate(CAM_API_STS_UNSUCCESSFUL)");
}

TEST_F(ConfiguredLogTest, RingWithAPathThatCannotBeWrittenIsEndedAllTheSame)
{
    Configure("OrviCamApi,MEMORY,4096,WARN,PATH=@/no/such\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_TRUE(g_bUniLogInit);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_TRUE(std::filesystem::is_empty(Logs()));
}

TEST_F(ConfiguredLogTest, LogIsEndedOnce)
{
    Configure("OrviCamApi,FILE,DEBUG,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Sys_Terminate(), 0u);
    StartLog();
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_TRUE(g_bUniLogInit) << "this log is the application's";
}

TEST_F(ConfiguredLogTest, ApplicationMayEndItBefore)
{
    Configure("OrviCamApi,MEMORY,4096,DEBUG,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(Log_Terminate(), 0u);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_TRUE(std::filesystem::is_empty(Logs()));
}

} // namespace Orvi::Testing
