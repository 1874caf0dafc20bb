#include "Text.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace Orvi::Tool {
namespace {

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return lower;
}

/// Insertions, deletions and replacements that turn one text into the other.
std::size_t EditDistance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
        }
    }
    return row.back();
}

} // namespace

std::string Hex(std::uint64_t value, int digits)
{
    char text[16];
    const auto end = std::to_chars(std::begin(text), std::end(text), value, 16).ptr;
    std::string hex(text, end);
    std::transform(hex.begin(), hex.end(), hex.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    const auto width = static_cast<std::size_t>(digits);
    return "0x" + std::string(width > hex.size() ? width - hex.size() : 0, '0') + hex;
}

std::string Number(double value)
{
    char text[64];
    // 16000000 reads better than 1.6e+07.
    const double size = std::abs(value);
    const auto format =
        size == 0 || (size >= 1e-4 && size < 1e15) ? std::chars_format::fixed : std::chars_format::general;
    return {text, std::to_chars(std::begin(text), std::end(text), value, format).ptr};
}

std::string Join(const std::vector<std::string> &words, std::string_view separator)
{
    std::string joined;
    for (const std::string &word : words)
        joined.append(joined.empty() ? "" : separator).append(word);
    return joined;
}

std::optional<std::int64_t> ParseInteger(const std::string &text)
{
    // Not base 0: a leading zero does not make a number octal.
    const std::string digits = text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (digits.empty() || !std::isxdigit(static_cast<unsigned char>(digits.front())))
        return std::nullopt;
    char *end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, hexadecimal ? 16 : 10);
    if (*end != '\0' || errno != 0)
        return std::nullopt;
    return value;
}

std::optional<double> ParseFloat(const std::string &text)
{
    double value = 0;
    const char *const first = text.data() + (text.starts_with('+') ? 1 : 0);
    const char *const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(first, last, value);
    if (first == last || end != last || error != std::errc{})
        return std::nullopt;
    return value;
}

std::vector<std::string> ClosestNames(std::string_view name, const std::vector<std::string> &candidates)
{
    const std::string wanted = Lower(name);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string &candidate : candidates) {
        const std::string lower = Lower(candidate);
        // Part of a name counts as near: "Exposure" means ExposureTime.
        const bool part = wanted.size() >= 3 && lower.find(wanted) != std::string::npos;
        const std::size_t distance = part ? 1 : EditDistance(wanted, lower);
        if (distance <= std::max<std::size_t>(2, wanted.size() / 3))
            near.emplace_back(distance, candidate);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min<std::size_t>(3, near.size()); ++i)
        names.push_back(near[i].second);
    return names;
}

} // namespace Orvi::Tool
