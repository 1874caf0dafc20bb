#include "u3v/genapi/NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace Orvi::GenApi {

namespace {

template <class T, class... Format>
bool Parse(std::string_view text, T &value, Format... format)
{
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, format...);
    return result.ec == std::errc() && result.ptr == end && !text.empty();
}

bool TakePrefix(std::string_view &text, std::string_view prefix)
{
    const bool has = text.starts_with(prefix);
    if (has)
        text.remove_prefix(prefix.size());
    return has;
}

bool TakeHexPrefix(std::string_view &text) { return TakePrefix(text, "0x") || TakePrefix(text, "0X"); }

} // namespace

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::int64_t> ReadInt(std::string_view text)
{
    text = Trim(text);
    const bool negative = TakePrefix(text, "-");
    if (!negative)
        TakePrefix(text, "+");
    const bool hex = TakeHexPrefix(text);
    std::uint64_t magnitude = 0;
    if (!Parse(text, magnitude, hex ? 16 : 10))
        return std::nullopt;
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if (!hex && magnitude > most + (negative ? 1 : 0))
        return std::nullopt;
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

std::optional<double> ReadFloat(std::string_view text)
{
    text = Trim(text);
    std::string_view digits = text;
    TakePrefix(digits, "+");
    if (TakeHexPrefix(digits)) {
        const auto integer = ReadInt(text);
        return integer ? std::optional(static_cast<double>(*integer)) : std::nullopt;
    }
    double value = 0;
    return Parse(digits, value) && !std::isnan(value) ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> ReadHex(std::string_view text)
{
    text = Trim(text);
    TakeHexPrefix(text);
    std::uint64_t value = 0;
    return Parse(text, value, 16) ? std::optional(value) : std::nullopt;
}

std::string Text(double value)
{
    char digits[40];
    // The shortest form of 200000 would be 2e+05.
    const double size = std::fabs(value);
    const bool plain = value == 0 || (size >= 1e-4 && size < 1e15);
    const auto result = plain ? std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed)
                              : std::to_chars(digits, digits + sizeof digits, value);
    return {digits, result.ptr};
}

std::string Text(std::int64_t value) { return std::to_string(value); }

std::string Hex(std::uint64_t value)
{
    char digits[20];
    const auto result = std::to_chars(digits, digits + sizeof digits, value, 16);
    return "0x" + std::string(digits, result.ptr);
}

} // namespace Orvi::GenApi
