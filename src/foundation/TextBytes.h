#pragma once
// The bytes of log lines: numbers as text and short copies, without what printf and an inlined memcpy cost.

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Orvi {

/// memcpy for texts of some ten bytes: words that overlap at the end. What the compiler makes of a memcpy whose size it
/// knows to be small is a string instruction, which costs more than the rest of a log line.
inline void CopyBytes(char *to, const char *from, std::size_t count)
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
    else
        for (std::size_t i = 0; i < count; ++i)
            to[i] = from[i];
}

enum class HexCase : uint64_t { Lower = 'a' - '9' - 1, Upper = 'A' - '9' - 1 };

/// Room that a number may need.
inline constexpr std::size_t maxDigits = 16;

/// "%08x": eight digits, all at once.
inline void WriteHex8(char *to, uint32_t number, HexCase hexCase)
{
    uint64_t nibbles = number; // one in each byte, the lowest first
    nibbles = (nibbles | nibbles << 16) & 0x0000FFFF0000FFFF;
    nibbles = (nibbles | nibbles << 8) & 0x00FF00FF00FF00FF;
    nibbles = (nibbles | nibbles << 4) & 0x0F0F0F0F0F0F0F0F;
    const uint64_t letters = ((nibbles + 0x0606060606060606) >> 4) & 0x0101010101010101;
    uint64_t text = nibbles + 0x3030303030303030 + letters * static_cast<uint64_t>(hexCase);
    static_assert(std::endian::native == std::endian::little);
    text = __builtin_bswap64(text);
    std::memcpy(to, &text, sizeof text);
}

/// "%llx": no leading zeros. Returns the number of digits.
inline std::size_t WriteHex(char *to, uint64_t number, HexCase hexCase)
{
    const auto zeros = static_cast<unsigned>(std::countl_zero(number | 1)) / 4;
    number <<= 4 * zeros;
    WriteHex8(to, static_cast<uint32_t>(number >> 32), hexCase);
    WriteHex8(to + 8, static_cast<uint32_t>(number), hexCase);
    return 16 - zeros;
}

/// "%06u" for a number below a million.
inline void WriteSixDigits(char *to, uint32_t number)
{
    // Three pairs that do not wait for each other.
    const uint32_t pairs[] = {number / 10000, number / 100 % 100, number % 100};
    for (const uint32_t pair : pairs) {
        *to++ = static_cast<char>('0' + pair / 10);
        *to++ = static_cast<char>('0' + pair % 10);
    }
}

/// "%d". Returns the number of characters.
inline std::size_t WriteDecimal(char *to, int32_t number)
{
    const std::size_t sign = number < 0 ? 1 : 0;
    uint32_t rest = number < 0 ? 0U - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    std::size_t count = sign + 1;
    for (uint32_t more = rest / 10; more != 0; more /= 10)
        ++count;
    to[0] = '-';
    for (std::size_t i = count; i-- > sign; rest /= 10)
        to[i] = static_cast<char>('0' + rest % 10);
    return count;
}

} // namespace Orvi
