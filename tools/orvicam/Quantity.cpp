#include "Quantity.h"

#include "Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <iterator>

namespace Orvi::Tool {
namespace {

enum class Dimension { Time, Frequency };

struct Scale {
    const char *unit;
    Dimension dimension;
    int exponent; ///< the unit is 10 to the power of it
};

// clang-format off
constexpr Scale s_scales[] = {
    {"s",        Dimension::Time,       0},
    {"ms",       Dimension::Time,      -3},
    {"us",       Dimension::Time,      -6},
    {"\u00B5s",  Dimension::Time,      -6}, // micro sign
    {"\u03BCs",  Dimension::Time,      -6}, // Greek mu
    {"ns",       Dimension::Time,      -9},
    {"Hz",       Dimension::Frequency,  0},
    {"kHz",      Dimension::Frequency,  3},
    {"MHz",      Dimension::Frequency,  6},
};
// clang-format on

const Scale *FindScale(std::string_view unit)
{
    const auto *row = std::find_if(std::begin(s_scales), std::end(s_scales),
                                   [unit](const Scale &scale) { return scale.unit == unit; });
    return row != std::end(s_scales) ? row : nullptr;
}

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Moves the decimal point of a number in text, so that no digit is lost on the way.
std::optional<std::string> Shift(const std::string &number, int places)
{
    const std::size_t e = number.find_first_of("eE");
    const auto written = e != std::string::npos ? ParseInteger(number.substr(e + 1)) : 0;
    constexpr std::int64_t beyondAllNumbers = 100'000;
    if (!written || *written < -beyondAllNumbers || *written > beyondAllNumbers)
        return std::nullopt;
    const std::int64_t exponent = *written + places;
    const auto value = ParseFloat(number.substr(0, e) + "e" + std::to_string(exponent));
    if (!value)
        return std::nullopt;
    constexpr double largestExact = 9007199254740992.0;
    if (std::abs(*value) <= largestExact && std::trunc(*value) == *value)
        return std::to_string(static_cast<std::int64_t>(*value));
    return Number(*value);
}

} // namespace

std::optional<Quantity> ParseQuantity(const std::string &text)
{
    const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
    const auto isDigit = [&](std::size_t at) {
        return at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0;
    };
    // Not what std::from_chars takes besides: "nan", "inf" and what begins with them.
    if (!isDigit(sign) && !(sign < text.size() && text[sign] == '.' && isDigit(sign + 1)))
        return std::nullopt;
    double value = 0;
    const char *const first = text.data() + (text.starts_with('+') ? 1 : 0);
    const char *const last = text.data() + text.size();
    const char *const end = std::from_chars(first, last, value).ptr;
    const char *const unit = std::find_if(end, last, [](char c) { return c != ' '; });
    const bool isHexadecimal = text.compare(sign, 2, "0x") == 0 || text.compare(sign, 2, "0X") == 0;
    if (unit == last || isHexadecimal)
        return std::nullopt;
    const auto initial = static_cast<unsigned char>(*unit);
    if (std::isalpha(initial) == 0 && initial != '%' && initial < 0x80)
        return std::nullopt;
    return Quantity{{first, end}, {unit, last}};
}

std::optional<std::string> Convert(const Quantity &quantity, std::string_view unit)
{
    if (quantity.unit == unit)
        return quantity.number;
    const Scale *const from = FindScale(quantity.unit);
    const Scale *const to = FindScale(unit);
    if (from == nullptr || to == nullptr || from->dimension != to->dimension)
        return std::nullopt;
    return Shift(quantity.number, from->exponent - to->exponent);
}

std::vector<std::string> UnitsAlike(std::string_view unit)
{
    std::vector<std::string> units;
    if (const Scale *const own = FindScale(unit))
        for (const Scale &scale : s_scales)
            if (scale.dimension == own->dimension && scale.unit != unit && IsAscii(scale.unit))
                units.emplace_back(scale.unit);
    return units;
}

} // namespace Orvi::Tool
