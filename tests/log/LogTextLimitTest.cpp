// Texts at and over the limits: a line holds 254 bytes of text, its status name included.

#include "tests/log/LogTest.h"

#include "log/UNI_Log.h"

namespace Orvi::Testing {

using LogTextLimitTest = LogTest;

namespace {

constexpr std::size_t limit = 254;

/// Every byte is different from its neighbours, so that a shift would show.
std::string Text(std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; i < size; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

std::string Cut(const std::string &text) { return text.substr(0, limit); }

constexpr std::size_t sizes[] = {0, 1, 225, 226, 227, 252, 253, 254, 255, 256, 300, 5000};

} // namespace

TEST_F(LogTextLimitTest, ApplicationTexts)
{
    ASSERT_EQ(Log_InitializeMem(100000, 0), 0u);
    for (const std::size_t size : sizes) {
        EXPECT_EQ(Log_Write(1, Text(size).c_str()), 0);
        EXPECT_EQ(RingBytes(), Apl("INFO ,", Cut(Text(size)))) << size;
        Log_MemFlush();
    }
}

TEST_F(LogTextLimitTest, ApplicationTextsInAFile)
{
    ASSERT_EQ(Log_InitializeFile(Path().c_str(), false, 0), 0u);
    std::string expected;
    for (const std::size_t size : sizes) {
        EXPECT_EQ(Log_Write(1, Text(size).c_str()), 0);
        expected += Apl("INFO ,", Cut(Text(size)));
    }
    EXPECT_EQ(FileBytes(), expected);
}

TEST_F(LogTextLimitTest, LinesOfTheLibraryWithAndWithoutStatus)
{
    ASSERT_EQ(Log_InitializeMem(100000, 0), 0u);
    for (const std::size_t size : sizes) {
        Uni_OutLog(0, Text(size).c_str());
        Uni_OutLog(13, Text(size).c_str());
        Uni_OutLog(18, Text(size).c_str());
        EXPECT_EQ(RingBytes(), Api("INFO ,", Cut(Text(size))) +
                                   Api("ERROR,", Cut(Text(size) + "(CAM_API_STS_INVALID_PARAMETER)")) +
                                   Api("ERROR,", Cut(Text(size) + "(CAM_API_STS_TIMEOUT)")))
            << size;
        Log_MemFlush();
    }
}

} // namespace Orvi::Testing
