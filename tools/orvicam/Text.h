#pragma once
// Small texts: numbers, lists, and names that a mistyped one may have meant.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Tool {

/// "0x1A"; with digits, padded with zeros.
std::string Hex(std::uint64_t value, int digits = 1);

/// The shortest text that reads back as the same number.
std::string Number(double value);

std::string Join(const std::vector<std::string> &words, std::string_view separator);

/// The whole text as a number, decimal or 0x...; nothing when it is none.
std::optional<std::int64_t> ParseInteger(const std::string &text);
std::optional<double> ParseFloat(const std::string &text);

/// The names most like the given one, best first: at most three, none when nothing is near.
std::vector<std::string> ClosestNames(std::string_view name, const std::vector<std::string> &candidates);

} // namespace Orvi::Tool
