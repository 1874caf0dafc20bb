#include "vcam/config/Section.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>

namespace Orvi::Vcam {

namespace {

using Kind = TomlValue::Kind;

std::string Quoted(std::string_view text)
{
    std::string quoted(1, '\'');
    return quoted.append(text).append(1, '\'');
}

std::string NumberText(double number)
{
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), error == std::errc() ? end : text.data()};
}

char Folded(char character)
{
    if (character >= 'A' && character <= 'Z') {
        return static_cast<char>(character - 'A' + 'a');
    }
    return character == '-' ? '_' : character;
}

/// Characters to add, drop, change or swap with the next one.
std::size_t Distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> before, above(b.size() + 1), row(b.size() + 1);
    std::iota(above.begin(), above.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const auto same = [&](std::size_t left, std::size_t right) { return Folded(a[left]) == Folded(b[right]); };
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same(i - 1, j - 1) ? 0 : 1)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1)) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before = std::exchange(above, row);
    }
    return above[b.size()];
}

} // namespace

std::string DidYouMean(std::string_view wrong, std::span<const std::string_view> names)
{
    constexpr std::size_t longest = 64; // nobody means more
    if (wrong.size() > longest || names.empty()) {
        return ".";
    }
    const auto distance = [wrong](std::string_view name) { return Distance(wrong, name); };
    const std::string_view nearest = *std::ranges::min_element(names, {}, distance);
    const bool isNear = distance(nearest) <= std::max<std::size_t>(1, nearest.size() / 3);
    return isNear ? "; did you mean " + Quoted(nearest) + "?" : ".";
}

std::string Listed(std::span<const std::string_view> names)
{
    std::string list;
    for (const std::string_view name : names) {
        list += (list.empty() ? "" : ", ") + std::string(name);
    }
    return list;
}

const TomlMember *Section::Member(std::string_view key) const
{
    const auto member = std::ranges::find(table_.members, key, &TomlMember::key);
    return member == table_.members.end() ? nullptr : &*member;
}

const TomlValue *Section::Find(std::string_view key)
{
    if (std::ranges::find(asked_, key) == asked_.end()) {
        asked_.push_back(key);
    }
    const TomlMember *member = Member(key);
    return member == nullptr ? nullptr : &member->value;
}

const TomlValue *Section::Find(std::string_view key, Kind kind)
{
    const TomlValue *value = Find(key);
    if (value == nullptr || value->kind == kind) {
        return value;
    }
    Wrong(key, "takes " + std::string(KindName(kind)) + ", not " + std::string(KindName(value->kind)) +
                   (kind == Kind::Text ? ": write it in quotes" : ""));
    return nullptr;
}

bool Section::Text(std::string_view key, std::string &to)
{
    const TomlValue *value = Find(key, Kind::Text);
    if (value != nullptr) {
        to = value->text;
    }
    return value != nullptr;
}

bool Section::Integer(std::string_view key, std::int64_t minimum, std::int64_t maximum, std::int64_t &to)
{
    const TomlValue *value = Find(key, Kind::Integer);
    if (value == nullptr) {
        return false;
    }
    if (value->integer < minimum || value->integer > maximum) {
        Wrong(key, "takes " + std::to_string(minimum) + " to " + std::to_string(maximum) + ", not " +
                       std::to_string(value->integer));
        return false;
    }
    to = value->integer;
    return true;
}

bool Section::Real(std::string_view key, double minimum, double maximum, double &to)
{
    const TomlValue *value = Find(key);
    const bool isInteger = value != nullptr && value->kind == Kind::Integer;
    if (value == nullptr || (!isInteger && Find(key, Kind::Real) == nullptr)) {
        return false;
    }
    const double number = isInteger ? static_cast<double>(value->integer) : value->real;
    if (!(number >= minimum && number <= maximum)) {
        Wrong(key, "takes " + NumberText(minimum) + " to " + NumberText(maximum) + ", not " + NumberText(number));
        return false;
    }
    to = number;
    return true;
}

bool Section::Flag(std::string_view key, bool &to)
{
    const TomlValue *value = Find(key, Kind::Flag);
    if (value != nullptr) {
        to = value->flag;
    }
    return value != nullptr;
}

std::optional<std::size_t> Section::IndexOf(std::string_view key, std::span<const std::string_view> names)
{
    std::string text;
    if (!Text(key, text)) {
        return std::nullopt;
    }
    const auto name = std::ranges::find(names, text);
    if (name == names.end()) {
        Wrong(key, "does not know " + Quoted(text) + DidYouMean(text, names) + " It takes " + Listed(names));
        return std::nullopt;
    }
    return static_cast<std::size_t>(name - names.begin());
}

const TomlValue *Section::Table(std::string_view key) { return Find(key, Kind::Table); }

std::vector<const TomlValue *> Section::Tables(std::string_view key, std::string_view head)
{
    std::vector<const TomlValue *> tables;
    const TomlValue *value = Find(key);
    if (value == nullptr) {
        return tables;
    }
    const bool isArray = value->kind == Kind::Array;
    if (!isArray || !std::ranges::all_of(value->items, [](const auto &item) { return item.kind == Kind::Table; })) {
        const std::string found = isArray ? "something else in the array" : std::string(KindName(value->kind));
        Wrong(key, "takes tables, each under its own " + std::string(head) + ", not " + found);
        return tables;
    }
    for (const TomlValue &item : value->items) {
        tables.push_back(&item);
    }
    return tables;
}

Place Section::WhereIs(std::string_view key) const
{
    const TomlMember *member = Member(key);
    return member == nullptr ? table_.place : member->value.place;
}

void Section::Wrong(std::string_view key, const std::string &why)
{
    mistakes_.push_back({WhereIs(key), std::string(key) + ' ' + why});
}

void Section::RefuseOthers(std::string_view hint)
{
    for (const TomlMember &member : table_.members) {
        if (std::ranges::find(asked_, member.key) == asked_.end()) {
            mistakes_.push_back({member.place, "there is no key " + Quoted(member.key) + " in " + name_ +
                                                   DidYouMean(member.key, asked_) + " It takes " + Listed(asked_) +
                                                   std::string(hint)});
        }
    }
}

} // namespace Orvi::Vcam
