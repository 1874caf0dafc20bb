// Texts without a head and without a line feed: they run into the next line.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

namespace Orvi::Testing {

using LogRawTextTest = LogTest;

TEST_F(LogRawTextTest, RunsIntoTheNextLine)
{
    const std::string expected = "  first.  second." + Apl("INFO ,", "line") + "third";
    const auto write = [] {
        EXPECT_EQ(_Uni_WriteLog2(0, "  first."), 0);
        EXPECT_EQ(_Uni_WriteLog2(0, "  second."), 0);
        EXPECT_EQ(Log_Write(1, "line"), 0);
        EXPECT_EQ(_Uni_WriteLog2(0, "third"), 0);
    };
    ASSERT_EQ(Log_InitializeMem(1000, 0), 0u);
    write();
    EXPECT_EQ(RingBytes(), expected);
    Log_Terminate();
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    write();
    EXPECT_EQ(FileBytes(), expected);
}

TEST_F(LogRawTextTest, RingTakesFiveHundredAndTwelveBytes)
{
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{511}, std::size_t{512}, std::size_t{513}, std::size_t{2000}}) {
        ASSERT_EQ(Log_InitializeMem(10000, 0), 0u);
        EXPECT_EQ(_Uni_WriteLog2(0, (std::string(size, 'x') + "tail").c_str()), 0);
        EXPECT_EQ(RingBytes(), (std::string(size, 'x') + "tail").substr(0, 512)) << size;
        Log_Terminate();
    }
}

TEST_F(LogRawTextTest, FileTakesEverything)
{
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    const std::string text(5000, 'x');
    EXPECT_EQ(_Uni_WriteLog2(0, text.c_str()), 0);
    EXPECT_EQ(FileBytes(), text);
}

TEST_F(LogRawTextTest, EmptyTextWritesNothing)
{
    ASSERT_EQ(Log_InitializeMem(10, 0), 0u);
    EXPECT_EQ(_Uni_WriteLog2(0, ""), 0);
    EXPECT_EQ(RingBytes(), "");
}

TEST_F(LogRawTextTest, IsFilteredByLevelButKnowsNoBadOne)
{
    ASSERT_EQ(Log_InitializeMem(100, 2), 0u);
    EXPECT_EQ(_Uni_WriteLog2(1, "filtered"), 0);
    EXPECT_EQ(_Uni_WriteLog2(2, "two"), 0);
    EXPECT_EQ(_Uni_WriteLog2(99, "any"), 0);
    EXPECT_EQ(RingBytes(), "twoany");
}

} // namespace Orvi::Testing
