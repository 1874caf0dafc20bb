// Names of statuses: what a transport's status is called, and what an EXIT line appends for one.

#include "tests/support/LogCapture.h"
#include "tests/support/StatusTable.h"

#include "log/UNI_Log.h"

#include <gtest/gtest.h>

#include <set>

namespace Orvi::Testing {

namespace {

/// Every status and every hole around one: all 16-bit values, all powers of two with their neighbours, the top.
std::set<uint32_t> ValuesWorthAsking()
{
    std::set<uint32_t> values;
    for (uint32_t value = 0; value <= 0xFFFF; ++value)
        values.insert(value);
    for (unsigned bit = 16; bit < 32; ++bit)
        for (const uint32_t offset : {0u, 1u, 0xFFFFFFFFu})
            values.insert((1u << bit) + offset);
    for (uint32_t low = 0; low <= 0xFFFF; ++low)
        values.insert(0xFFFF0000u | low);
    return values;
}

} // namespace

TEST(StatusTextTest, TransportNameOfEveryValue)
{
    for (const uint32_t value : ValuesWorthAsking())
        EXPECT_EQ(U3vCamApiStatusString(value), TransportName(value)) << std::hex << value;
}

TEST(StatusTextTest, ExitLineOfEveryValueHasItsLevelAndSuffixOrIsNotWritten)
{
    LogCapture log;
    for (const uint32_t value : ValuesWorthAsking()) {
        Uni_OutLog(value, "EXIT: x");
        if (FindStatusRow(value) != nullptr) {
            EXPECT_EQ(log.Take(), std::vector{ExitLine(value, "x")});
        }
    }
    EXPECT_EQ(log.Take(), std::vector<std::string>{}) << "a value that is no status was written";
}

TEST(StatusTextTest, ExitLinesThatApplicationsSearchFor)
{
    LogCapture log;
    for (const uint32_t value : {0x2u, 0x103u, 0xB000u, 0x17u})
        Uni_OutLog(value, "EXIT: f");
    EXPECT_EQ(log.Take(), (std::vector<std::string>{"WARN ,EXIT: f(CAM_API_STS_ALREADY_INITIALIZED)",
                                                    "ERROR,EXIT: f(CAM_API_STS_DLL_LOAD_ERR)"}));
}

} // namespace Orvi::Testing
