#pragma once
// Numbers as descriptions write them, and as messages show them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvi::GenApi {

/// Without the blanks around it.
std::string_view Trim(std::string_view text);

// Nothing when the text is no number, or one that does not fit. A hexadecimal number is a pattern of 64 bits.
std::optional<std::int64_t> ReadInt(std::string_view text);
std::optional<double> ReadFloat(std::string_view text);
std::optional<std::uint64_t> ReadHex(std::string_view text); ///< with or without 0x

template <class T>
std::optional<T> ReadNumber(std::string_view text)
{
    if constexpr (std::is_same_v<T, double>)
        return ReadFloat(text);
    else
        return ReadInt(text);
}

/// No more digits than needed.
std::string Text(double value);
std::string Text(std::int64_t value);
std::string Hex(std::uint64_t value);

} // namespace Orvi::GenApi
