// Which lines the level lets through.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

namespace Orvi::Testing {

using LogLevelTest = LogTest;

TEST_F(LogLevelTest, LowerLevelsAreFiltered)
{
    const char *const words[] = {"DEBUG,", "INFO ,", "WARN ,", "ERROR,", "FATAL,"};
    for (uint32_t lowest = 0; lowest <= 4; ++lowest) {
        ASSERT_EQ(Log_InitializeMem(10000, lowest), 0u);
        EXPECT_EQ(Uni_GetLogLevel(), lowest);
        std::string expected;
        for (uint32_t level = 0; level <= 4; ++level) {
            EXPECT_EQ(Log_Write(level, "x"), 0) << level;
            if (level >= lowest)
                expected += Apl(words[level], "x");
        }
        EXPECT_EQ(RingBytes(), expected) << lowest;
        Log_Terminate();
    }
}

TEST_F(LogLevelTest, UnknownLevelIsRefusedUnlessFiltered)
{
    ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
    for (const uint32_t level : {5u, 6u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(Log_Write(level, "x"), 13) << level;
    EXPECT_EQ(RingBytes(), "");
    Log_Terminate();
    ASSERT_EQ(Log_InitializeMem(10000, 6), 0u);
    EXPECT_EQ(Log_Write(5, "x"), 0) << "filtered before it is looked at";
    EXPECT_EQ(Log_Write(4, "x"), 0);
    EXPECT_EQ(Log_Write(6, "x"), 13);
    EXPECT_EQ(RingBytes(), "");
}

TEST_F(LogLevelTest, WarnKeepsFailingExitsOnly)
{
    ASSERT_EQ(Log_InitializeMem(10000, CAM_LOG_LEVEL_WARN), 0u);
    EXPECT_EQ(Log_Write(1, "filtered"), 0);
    Uni_OutLog(0, "ENTER: f");
    Uni_OutLog(0, "EXIT: f");
    Uni_OutLog(4, "EXIT: f");
    Uni_OutLog(7, "EXIT: f");
    EXPECT_EQ(RingBytes(), Api("WARN ,", "EXIT: f(CAM_API_STS_ALREADY_OPENED)") +
                               Api("ERROR,", "EXIT: f(CAM_API_STS_INVALID_CAMERA_HANDLE)"));
}

TEST_F(LogLevelTest, NobodyWritesWhileTheLogIsDown)
{
    EXPECT_FALSE(g_bUniLogInit);
    EXPECT_EQ(Log_Write(1, "x"), -1);
    EXPECT_EQ(Log_Write(5, "x"), -1);
    EXPECT_EQ(_Uni_WriteLog(1, true, "x"), -1);
    EXPECT_EQ(_Uni_WriteLog2(1, "x"), -1);
    Uni_OutLog(0, "x");
    EXPECT_EQ(Log_Terminate(), 0xFFFFFFFFu);
    EXPECT_EQ(Log_MemFlush(), 0xFFFFFFFFu);
    EXPECT_EQ(Log_OutMemToFile(Path().c_str()), -1);
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

} // namespace Orvi::Testing
