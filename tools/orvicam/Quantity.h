#pragma once
// Numbers with a unit: "5ms" for a feature in microseconds.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Tool {

struct Quantity {
    std::string number; ///< as it was written
    std::string unit;
};

/// Nothing unless the text is a decimal number and a unit behind it.
std::optional<Quantity> ParseQuantity(const std::string &text);

/// The number in another unit; nothing when the one says nothing about the other. Exact: 0.57ms is 570us.
std::optional<std::string> Convert(const Quantity &quantity, std::string_view unit);

/// Other units that convert to it.
std::vector<std::string> UnitsAlike(std::string_view unit);

} // namespace Orvi::Tool
