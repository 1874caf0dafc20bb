#pragma once
// The bytes of log lines: numbers as text and short copies, without what printf and an inlined memcpy cost. Each
// function answers the end of what it wrote.

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace Orvi {

/// memcpy for texts of some ten bytes: words that overlap at the end. What the compiler makes of a memcpy whose size it
/// knows to be small is a string instruction, which costs more than the rest of a log line.
inline char *CopyBytes(char *to, const char *from, std::size_t count)
{
    using Wide [[gnu::vector_size(16)]] = char;
    const auto copyOverlapping = [&]<class Word>(Word) {
        Word word;
        std::size_t done = 0;
        for (; done + sizeof word <= count; done += sizeof word) {
            std::memcpy(&word, from + done, sizeof word);
            std::memcpy(to + done, &word, sizeof word);
        }
        std::memcpy(&word, from + count - sizeof word, sizeof word);
        std::memcpy(to + count - sizeof word, &word, sizeof word);
    };
    if (count >= 16)
        copyOverlapping(Wide{});
    else if (count >= 8)
        copyOverlapping(uint64_t(0));
    else if (count >= 4)
        copyOverlapping(uint32_t(0));
    else if (count >= 2)
        copyOverlapping(uint16_t(0));
    else if (count != 0)
        *to = *from;
    return to + count;
}

enum class HexCase : unsigned char { Lower = 'a' - '9' - 1, Upper = 'A' - '9' - 1 };

/// Room that a number may need.
inline constexpr std::size_t maxDigits = 16;

using HexDigits [[gnu::vector_size(16)]] = unsigned char;

/// "%016llx": sixteen digits, all at once.
inline HexDigits HexDigitsOf(uint64_t number, HexCase hexCase)
{
    using Signed [[gnu::vector_size(16)]] = signed char;
    using Words [[gnu::vector_size(16)]] = uint64_t;
    static_assert(std::endian::native == std::endian::little);
    const Words words = {__builtin_bswap64(number), 0};
    const auto pairs = reinterpret_cast<HexDigits>(words);
    const HexDigits nibbles =
        __builtin_shufflevector(pairs >> 4, pairs & 0xF, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    const auto isLetter = reinterpret_cast<HexDigits>(reinterpret_cast<Signed>(nibbles) > 9);
    return nibbles + '0' + (isLetter & static_cast<unsigned char>(hexCase));
}

/// "%08x"
inline char *WriteHex8(char *to, uint32_t number, HexCase hexCase)
{
    const HexDigits digits = HexDigitsOf(uint64_t{number} << 32, hexCase);
    std::memcpy(to, &digits, 8);
    return to + 8;
}

/// "%llx". Needs room for all sixteen digits.
inline char *WriteHex(char *to, uint64_t number, HexCase hexCase)
{
    const auto zeros = static_cast<unsigned>(std::countl_zero(number | 1)) / 4;
    const HexDigits digits = HexDigitsOf(number << (4 * zeros), hexCase);
    std::memcpy(to, &digits, sizeof digits);
    return to + maxDigits - zeros;
}

/// "00" to "99".
inline constexpr auto s_digitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
    return pairs;
}();

/// "%02u" for a number below a hundred.
inline char *WriteTwoDigits(char *to, uint32_t number)
{
    std::memcpy(to, &s_digitPairs[2 * number], 2);
    return to + 2;
}

/// "%06u" for a number below a million.
inline char *WriteSixDigits(char *to, uint32_t number)
{
    // Three pairs that do not wait for each other.
    WriteTwoDigits(to, number / 10000);
    WriteTwoDigits(to + 2, number / 100 % 100);
    return WriteTwoDigits(to + 4, number % 100);
}

/// "%u", ending at end. Answers where it begins.
inline char *WriteDecimalBefore(char *end, uint32_t number)
{
    for (; number >= 100; number /= 100)
        WriteTwoDigits(end -= 2, number % 100);
    if (number >= 10)
        WriteTwoDigits(end -= 2, number);
    else
        *--end = static_cast<char>('0' + number);
    return end;
}

/// "%d".
inline char *WriteDecimal(char *to, int32_t number)
{
    if (number < 0)
        *to++ = '-';
    const uint32_t size = number < 0 ? 0U - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    char *end = to + 1;
    for (uint64_t power = 10; size >= power; power *= 10)
        ++end;
    WriteDecimalBefore(end, size);
    return end;
}

} // namespace Orvi
