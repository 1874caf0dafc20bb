// The ring in memory: wrapping, flushing, dumping.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

#include <algorithm>

namespace Orvi::Testing {

class LogRingTest : public LogTest {
  protected:
    /// Bytes without a head, so that a test counts its own only.
    static std::string Write(std::size_t size, char first = 'a')
    {
        std::string text;
        for (std::size_t i = 0; i < size; ++i)
            text += static_cast<char>(first + static_cast<char>(i % 26));
        EXPECT_EQ(_Uni_WriteLog2(1, text.c_str()), 0);
        return text;
    }
};

TEST_F(LogRingTest, EmptyRingDumpsItsHeadOnly)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    EXPECT_EQ(RingBytes(), "");
}

TEST_F(LogRingTest, LastHundredBytesOfHundredAndThirty)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    const std::string text = Write(130);
    EXPECT_EQ(RingBytes(), text.substr(30));
}

struct FillRow {
    std::size_t ring, written;
};

TEST_F(LogRingTest, HoldsTheLastBytesWhateverTheSizes)
{
    constexpr FillRow rows[] = {{100, 0},   {100, 1},   {100, 99},  {100, 100}, {100, 101}, {100, 199},
                                {100, 200}, {100, 201}, {100, 350}, {1, 1},     {1, 7},     {2, 3}};
    for (const FillRow &row : rows) {
        ASSERT_EQ(Log_InitializeMem(static_cast<uint32_t>(row.ring), 0), 0u);
        const std::string text = Write(row.written);
        EXPECT_EQ(RingBytes(), text.substr(text.size() - std::min(row.ring, row.written)))
            << row.written << " bytes in a ring of " << row.ring;
        EXPECT_EQ(RingBytes(), text.substr(text.size() - std::min(row.ring, row.written))) << "a dump leaves the ring";
        Log_Terminate();
    }
}

TEST_F(LogRingTest, WrapsByteByByteOverManyWrites)
{
    ASSERT_EQ(Log_InitializeMem(37, 0), 0u);
    std::string all;
    for (std::size_t size = 0; size < 60; ++size) {
        all += Write(size, 'A');
        EXPECT_EQ(RingBytes(), all.substr(all.size() - std::min<std::size_t>(37, all.size())));
    }
}

TEST_F(LogRingTest, CutsTheOldestLineOnly)
{
    const std::string line = Apl("INFO ,", "x");
    ASSERT_EQ(Log_InitializeMem(static_cast<uint32_t>(2 * line.size() + 5), 0), 0u);
    for (int i = 0; i < 3; ++i)
        Log_Write(1, "x");
    EXPECT_EQ(RingBytes(), line.substr(line.size() - 5) + line + line);
}

TEST_F(LogRingTest, LineLongerThanTheRingLeavesItsEnd)
{
    ASSERT_EQ(Log_InitializeMem(10, 0), 0u);
    Log_Write(1, "0123456789");
    EXPECT_EQ(RingBytes(), "123456789\n");
}

TEST_F(LogRingTest, FlushEmptiesIt)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    Write(130);
    EXPECT_EQ(Log_MemFlush(), 0u);
    EXPECT_EQ(RingBytes(), "");
    const std::string text = Write(20, 'A');
    EXPECT_EQ(RingBytes(), text) << "the bytes from before the flush are gone";
    const std::string more = Write(90, 'A');
    EXPECT_EQ(RingBytes(), (text + more).substr(10));
}

TEST_F(LogRingTest, FlushNeedsARing)
{
    EXPECT_EQ(Log_MemFlush(), 0xFFFFFFFFu);
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    Log_Write(1, "stays");
    EXPECT_EQ(Log_MemFlush(), 0xFFFFFFFFu);
    EXPECT_EQ(FileBytes(), Apl("INFO ,", "stays"));
}

TEST_F(LogRingTest, NewRingStartsEmpty)
{
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    Write(130);
    Log_Terminate();
    ASSERT_EQ(Log_InitializeMem(100, 0), 0u);
    EXPECT_EQ(RingBytes(), "");
}

} // namespace Orvi::Testing
