#include "vcam/config/Toml.h"

#include <algorithm>

// Without its exceptions a syntax error is a value. The parser is compiled into this file alone.
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#define TOML_ENABLE_WINDOWS_COMPAT 0
#include <toml++/toml.h>

namespace Orvi::Vcam {

namespace {

Place PlaceOf(const toml::source_region &region) { return {region.begin.line, region.begin.column}; }

TomlValue Convert(const toml::node &node);

std::vector<TomlMember> ConvertMembers(const toml::table &table)
{
    std::vector<TomlMember> members;
    for (const auto &[key, node] : table) {
        members.push_back({std::string(key.str()), PlaceOf(key.source()), Convert(node)});
    }
    std::ranges::stable_sort(members, {}, &TomlMember::place);
    return members;
}

TomlValue Convert(const toml::node &node)
{
    using enum TomlValue::Kind;
    TomlValue value;
    value.place = PlaceOf(node.source());
    if (const toml::table *table = node.as_table()) {
        value.members = ConvertMembers(*table);
    } else if (const toml::array *array = node.as_array()) {
        value.kind = Array;
        for (const toml::node &item : *array) {
            value.items.push_back(Convert(item));
        }
    } else if (const auto *text = node.as_string()) {
        value.kind = Text;
        value.text = text->get();
    } else if (const auto *integer = node.as_integer()) {
        value.kind = Integer;
        value.integer = integer->get();
    } else if (const auto *real = node.as_floating_point()) {
        value.kind = Real;
        value.real = real->get();
    } else if (const auto *flag = node.as_boolean()) {
        value.kind = Flag;
        value.flag = flag->get();
    } else {
        value.kind = Time;
    }
    return value;
}

} // namespace

std::string_view KindName(TomlValue::Kind kind)
{
    constexpr std::string_view names[] = {"a text", "an integer", "a real number", "true or false",
                                          "a time", "an array",   "a table"};
    return names[static_cast<std::size_t>(kind)];
}

TomlValue ParseToml(std::string_view text, Mistakes &mistakes)
{
    const toml::parse_result result = toml::parse(text);
    if (!result) {
        const toml::parse_error &error = result.error();
        mistakes.push_back({PlaceOf(error.source()), "no TOML: " + std::string(error.description())});
        return {};
    }
    return Convert(result.table());
}

} // namespace Orvi::Vcam
