// Formatted texts: printf's bytes, whether there is room for all of them or not.

#include "tests/log/LogTest.h"

#include "transport/LogText.h"

#include <cinttypes>
#include <cstdio>

namespace Orvi::Testing {

namespace {

constexpr std::size_t limit = 255;

template <class... Arguments>
std::string Printf(const char *format, Arguments... arguments)
{
    char text[600];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

/// What a line holds that begins with so many letters and goes on with the format.
template <class... Arguments>
std::string Written(std::size_t letters, LogFormat<std::type_identity_t<Arguments>...> format,
                    const Arguments &...arguments)
{
    LogWriter line;
    line.Append(std::string(letters, 'x'));
    line.Format<Arguments...>(format, arguments...);
    return std::string(line.Text());
}

std::string Cut(std::size_t letters, const std::string &text)
{
    return (std::string(letters, 'x') + text).substr(0, limit);
}

/// Numbers of every length in both bases, and their neighbours.
std::vector<uint64_t> Numbers()
{
    std::vector<uint64_t> numbers = {0, UINT64_MAX, 0x0123456789ABCDEF, 0xFEDCBA9876543210, 0x90A0B0C0D0E0F009};
    for (const uint64_t base : {10u, 16u})
        for (uint64_t power = 1, digits = 1; digits < 16; ++digits, power *= base)
            for (const uint64_t number : {power - 1, power, power + 1, power * 7})
                numbers.insert(numbers.end(), {number, 0 - number});
    return numbers;
}

} // namespace

TEST(LogWriterTest, NumbersAreWritten)
{
    for (const uint64_t number : Numbers()) {
        const auto word = static_cast<uint32_t>(number);
        EXPECT_EQ(Written(0, "%llX", number), Printf("%" PRIX64, number));
        EXPECT_EQ(Written(0, "%llx", number), Printf("%" PRIx64, number));
        EXPECT_EQ(Written(0, "%08X", word), Printf("%08" PRIX32, word));
        EXPECT_EQ(Written(0, "%d", word), Printf("%" PRId32, static_cast<int32_t>(word)));
    }
}

TEST(LogWriterTest, LiteralsOfEachLengthAreWritten)
{
    const uint32_t one = 1;
    EXPECT_EQ(Written(0, "no argument"), "no argument");
    EXPECT_EQ(Written(0, "%d%d", one, one), "11");
    EXPECT_EQ(Written(0, "a%dbc%ddef%dghij", one, one, one), "a1bc1def1ghij");
    EXPECT_EQ(Written(0, "abcdefgh%dabcdefghijklmnop%dabcdefghijklmnopqrstuvwxyz0123456789%d", one, one, one),
              "abcdefgh1abcdefghijklmnop1abcdefghijklmnopqrstuvwxyz01234567891");
}

TEST(LogWriterTest, TextsAndRealNumbersAreWritten)
{
    const uint64_t number = 0x1F;
    const char *const none = nullptr;
    EXPECT_EQ(Written(0, "%s=%15.9f, 0x%llx", "name", -2.5, number), "name=   -2.500000000, 0x1f");
    EXPECT_EQ(Written(0, "%s.", none), "(null).");
    EXPECT_EQ(Written(0, "%15.9f", 1e300), Cut(0, Printf("%15.9f", 1e300)));
}

TEST(LogWriterTest, WhatGoesBeyondTheLimitIsCut)
{
    const uint64_t address = 0x123456789ABCDEF0;
    const uint32_t word = 0xC0FFEE, negative = static_cast<uint32_t>(INT32_MIN);
    for (std::size_t letters = 180; letters <= limit + 5; ++letters) {
        EXPECT_EQ(Written(letters, "a=0x%llX, b=%d, c=0x%08X;", address, negative, word),
                  Cut(letters, "a=0x123456789ABCDEF0, b=-2147483648, c=0x00C0FFEE;"));
        EXPECT_EQ(Written(letters, "%llx", address), Cut(letters, "123456789abcdef0"));
        EXPECT_EQ(Written(letters, "a=%s, b=%d.", "some text", word), Cut(letters, "a=some text, b=12648430."));
    }
}

TEST(LogWriterTest, TextsFollowEachOther)
{
    const uint32_t one = 1;
    LogWriter line;
    line.Append("ENTER: ");
    line.Append("f");
    line("a=%d", one);
    line("b=%d", one);
    EXPECT_EQ(line.Text(), "ENTER: f, a=1, b=1");
}

} // namespace Orvi::Testing
