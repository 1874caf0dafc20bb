#include "tools/orvicam/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvi::Tool;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Text, HexIsUpperCaseAndPadded)
{
    EXPECT_EQ(Hex(0x1a), "0x1A");
    EXPECT_EQ(Hex(0x1a, 8), "0x0000001A");
    EXPECT_EQ(Hex(0), "0x0");
    EXPECT_EQ(Hex(UINT64_MAX), "0xFFFFFFFFFFFFFFFF");
}

TEST(Text, NumberReadsBackAsTheSame)
{
    EXPECT_EQ(Number(0.1), "0.1");
    EXPECT_EQ(Number(10000), "10000");
    EXPECT_EQ(Number(16000000), "16000000");
    EXPECT_EQ(Number(0), "0");
    EXPECT_EQ(Number(-1e300), "-1e+300");
    EXPECT_EQ(Number(0.00012345678901234567), "0.00012345678901234567");
    EXPECT_EQ(Number(1e-7), "1e-07");
    EXPECT_EQ(ParseFloat(Number(1.0 / 3)), 1.0 / 3);
}

TEST(Text, IntegersAreDecimalOrHexadecimalNeverOctal)
{
    EXPECT_EQ(ParseInteger("640"), 640);
    EXPECT_EQ(ParseInteger("-3"), -3);
    EXPECT_EQ(ParseInteger("+7"), 7);
    EXPECT_EQ(ParseInteger("010"), 10);
    EXPECT_EQ(ParseInteger("0x1F"), 31);
    EXPECT_EQ(ParseInteger("9223372036854775807"), INT64_MAX);
}

TEST(Text, WhatIsNoIntegerIsRefused)
{
    for (const char *text : {"", "-", "12px", "1.5", " 3", "0x", "--1", "+-1", "9223372036854775808"})
        EXPECT_EQ(ParseInteger(text), std::nullopt) << text;
}

TEST(Text, WhatIsNoFloatIsRefused)
{
    EXPECT_EQ(ParseFloat("1e3"), 1000);
    EXPECT_EQ(ParseFloat("+2.5"), 2.5);
    for (const char *text : {"", "+", "5ms", "1,5", " 3"})
        EXPECT_EQ(ParseFloat(text), std::nullopt) << text;
}

TEST(Text, ClosestNamesFindsTypingMistakesBestFirst)
{
    const std::vector<std::string> names = {"Width", "Height", "WidthMax", "Gain"};
    EXPECT_THAT(ClosestNames("Widht", names), ElementsAre("Width"));
    EXPECT_THAT(ClosestNames("gain", names), ElementsAre("Gain"));
    EXPECT_THAT(ClosestNames("width", names), ElementsAre("Width", "WidthMax"));
}

TEST(Text, ClosestNamesFindsPartsOfNames)
{
    EXPECT_THAT(ClosestNames("Exposure", {"ExposureTime", "ExposureMode", "Gain"}),
                ElementsAre("ExposureTime", "ExposureMode"));
}

TEST(Text, ClosestNamesIsEmptyWhenNothingIsNear)
{
    EXPECT_THAT(ClosestNames("Zzzzzzz", {"Width", "Height"}), IsEmpty());
}
