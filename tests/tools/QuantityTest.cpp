#include "tools/orvicam/Quantity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvi::Tool;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string In(const std::string &text, const char *unit)
{
    const auto quantity = ParseQuantity(text);
    return quantity ? Convert(*quantity, unit).value_or("none") : "no quantity";
}

} // namespace

TEST(Quantity, IsANumberWithAUnitBehindIt)
{
    const auto quantity = ParseQuantity("-2.5e3 ms");
    ASSERT_TRUE(quantity);
    EXPECT_EQ(quantity->number, "-2.5e3");
    EXPECT_EQ(quantity->unit, "ms");
    EXPECT_EQ(ParseQuantity("+.5%")->unit, "%");
}

TEST(Quantity, PlainNumbersAndWordsAreNone)
{
    for (const char *text : {"", "5", "0x5", "0x5ms", "wide", "nano", "infs", "-", "+ms", ".s", "1,5", "1_000", "5 "})
        EXPECT_FALSE(ParseQuantity(text)) << text;
}

TEST(Quantity, ConvertsTimes)
{
    EXPECT_EQ(In("5ms", "us"), "5000");
    EXPECT_EQ(In("0.005s", "us"), "5000");
    EXPECT_EQ(In("7000000ns", "ms"), "7");
    EXPECT_EQ(In("1500ns", "us"), "1.5");
    EXPECT_EQ(In("3\u00B5s", "us"), "3");
    EXPECT_EQ(In("3\u03BCs", "ns"), "3000");
    EXPECT_EQ(In("-2ms", "us"), "-2000");
}

TEST(Quantity, ConvertsFrequencies)
{
    EXPECT_EQ(In("0.05kHz", "Hz"), "50");
    EXPECT_EQ(In("2MHz", "kHz"), "2000");
}

TEST(Quantity, ConversionLosesNoDigit)
{
    EXPECT_EQ(In("0.57ms", "us"), "570");
    EXPECT_EQ(In("1.1e-3s", "us"), "1100");
    EXPECT_EQ(In("1e3us", "ms"), "1");
    EXPECT_EQ(In("9007199254740993us", "us"), "9007199254740993");
}

TEST(Quantity, ItsOwnUnitIsTakenWhateverItIs)
{
    EXPECT_EQ(In("3dB", "dB"), "3");
    EXPECT_EQ(In("50%", "%"), "50");
    EXPECT_EQ(In("64 px", "px"), "64");
    EXPECT_EQ(In("7furlongs", "furlongs"), "7");
}

TEST(Quantity, AnotherKindOfUnitIsRefused)
{
    EXPECT_EQ(In("5Hz", "us"), "none");
    EXPECT_EQ(In("5ms", "Hz"), "none");
    EXPECT_EQ(In("5ms", "px"), "none");
    EXPECT_EQ(In("5dB", "ms"), "none");
    EXPECT_EQ(In("5Ms", "s"), "none") << "units differ by case";
}

TEST(Quantity, NumbersBeyondAllMeasureAreRefused)
{
    EXPECT_EQ(In("1e308s", "ns"), "none");
    EXPECT_EQ(In("1e999999999999999999999s", "us"), "none");
}

TEST(Quantity, TellsTheUnitsThatConvert)
{
    EXPECT_THAT(UnitsAlike("us"), ElementsAre("s", "ms", "ns"));
    EXPECT_THAT(UnitsAlike("Hz"), ElementsAre("kHz", "MHz"));
    EXPECT_THAT(UnitsAlike("px"), IsEmpty());
}
