#pragma once
// A TOML document as a plain tree in which every key and value knows its place.

#include "vcam/config/Mistake.h"

#include <cstdint>
#include <string_view>

namespace Orvi::Vcam {

struct TomlMember;

struct TomlValue {
    enum class Kind : std::uint8_t { Text, Integer, Real, Flag, Time, Array, Table };
    Kind kind = Kind::Table;
    Place place;
    std::string text;
    std::int64_t integer = 0;
    double real = 0;
    bool flag = false;
    std::vector<TomlValue> items;    ///< of an array
    std::vector<TomlMember> members; ///< of a table, in the order of the file
};

struct TomlMember {
    std::string key;
    Place place;
    TomlValue value;
};

/// "a text", "an integer" ...
std::string_view KindName(TomlValue::Kind kind);

/// The document's table. A syntax error ends the reading: it becomes a mistake, and the table is empty.
TomlValue ParseToml(std::string_view text, Mistakes &mistakes);

} // namespace Orvi::Vcam
