// The ring's dump stops at a zero byte.

#include "log/LogStorage.h"

#include <gtest/gtest.h>

#include <memory>

namespace Orvi::Testing {

namespace {

using namespace std::string_view_literals;

std::string Dumped(const LogRing &ring)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::tmpfile(), &std::fclose);
    ring.Dump(file.get());
    std::string bytes(static_cast<std::size_t>(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
    return bytes;
}

struct ZeroRow {
    std::string_view written;
    const char *dumped;
};

} // namespace

TEST(LogRingBytesTest, StopsAtTheFirstZeroByte)
{
    // clang-format off
    const ZeroRow rows[] = { // into a ring of 8
        {"ab\0cd"sv,            "ab"},
        {"\0abc"sv,             ""},
        {"abc\0"sv,             "abc"},
        {"0123456\0"sv,         "0123456"},
        {"0123456789\0b"sv,     "456789"}, // wrapped: the zero lies behind the seam
        {"01234567\0bcdefg"sv,  "7"},      // wrapped: before the seam
        {"01234567\0bcdefgh"sv, ""},
    };
    // clang-format on
    for (const ZeroRow &row : rows) {
        LogRing ring;
        ASSERT_TRUE(ring.Allocate(8));
        ring.Write(row.written);
        EXPECT_EQ(Dumped(ring), row.dumped);
        ring.Free();
    }
}

TEST(LogRingBytesTest, FreedRingIsNotAllocated)
{
    LogRing ring;
    EXPECT_FALSE(ring.IsAllocated());
    ASSERT_TRUE(ring.Allocate(8));
    EXPECT_TRUE(ring.IsAllocated());
    ring.Write("abcdefghijk");
    ring.Free();
    EXPECT_FALSE(ring.IsAllocated());
    ASSERT_TRUE(ring.Allocate(4));
    EXPECT_EQ(Dumped(ring), "");
    ring.Free();
}

} // namespace Orvi::Testing
