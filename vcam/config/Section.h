#pragma once
// One table of a description file while it is read: each key is asked for by name with what it takes, and what was
// never asked for is unknown. Wrong values become mistakes and leave the target as it was.

#include "vcam/config/Toml.h"

#include <optional>
#include <span>
#include <utility>

namespace Orvi::Vcam {

class Section {
  public:
    /// `name` is what messages call the table: "[[camera]]".
    Section(const TomlValue &table, std::string name, Mistakes &mistakes)
        : table_(table), name_(std::move(name)), mistakes_(mistakes)
    {
    }

    /// The value, or null when the key is not there. All functions below ask in this way.
    const TomlValue *Find(std::string_view key);

    // Each tells whether the key is there and its value has been taken.
    bool Text(std::string_view key, std::string &to);
    bool Integer(std::string_view key, std::int64_t minimum, std::int64_t maximum, std::int64_t &to);
    bool Real(std::string_view key, double minimum, double maximum, double &to);
    bool Flag(std::string_view key, bool &to);
    template <class Number>
    bool Integer(std::string_view key, std::int64_t minimum, std::int64_t maximum, Number &to)
    {
        std::int64_t number = 0;
        const bool isTaken = Integer(key, minimum, maximum, number);
        to = isTaken ? static_cast<Number>(number) : to;
        return isTaken;
    }
    template <class Choice>
    using Choices = std::span<const std::pair<std::string_view, Choice>>;
    template <class Choice>
    bool OneOf(std::string_view key, Choices<Choice> choices, Choice &to)
    {
        std::vector<std::string_view> names;
        for (const auto &choice : choices) {
            names.push_back(choice.first);
        }
        const std::optional<std::size_t> index = IndexOf(key, names);
        to = index ? choices[*index].second : to;
        return index.has_value();
    }
    /// The place of a text among the names.
    std::optional<std::size_t> IndexOf(std::string_view key, std::span<const std::string_view> names);
    /// The table, or null.
    const TomlValue *Table(std::string_view key);
    /// All tables of an array of them, whose head is written so: "[[camera.fault]]".
    std::vector<const TomlValue *> Tables(std::string_view key, std::string_view head);

    /// Adds a mistake about the key, at its value; where it is missing, at the table.
    void Wrong(std::string_view key, const std::string &why);
    /// A mistake for each key that nobody has asked for; `hint` ends its sentence.
    void RefuseOthers(std::string_view hint = {});

    Place Where() const { return table_.place; }
    Place WhereIs(std::string_view key) const;

  private:
    const TomlMember *Member(std::string_view key) const;
    const TomlValue *Find(std::string_view key, TomlValue::Kind kind);

    const TomlValue &table_;
    const std::string name_;
    Mistakes &mistakes_;
    std::vector<std::string_view> asked_;
};

/// "; did you mean 'vendor'?" when a name comes near, else ".": the end of a sentence in any case.
std::string DidYouMean(std::string_view wrong, std::span<const std::string_view> names);
/// "a, b, c"
std::string Listed(std::span<const std::string_view> names);

} // namespace Orvi::Vcam
