#include "u3v/genapi/Properties.h"

#include "u3v/genapi/Loader.h"
#include "u3v/genapi/Say.h"

#include <charconv>
#include <limits>

namespace Orvi::GenApi {

namespace {

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class T, class... Format>
bool Parse(std::string_view text, T &value, Format... format)
{
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, format...);
    return result.ec == std::errc() && result.ptr == end && !text.empty();
}

bool HasHexPrefix(std::string_view text) { return text.starts_with("0x") || text.starts_with("0X"); }

} // namespace

std::optional<Prop> FindProperty(std::string_view name)
{
    static const auto *const table = [] {
        auto *const rows = new std::unordered_map<std::string_view, Prop>;
#define GENAPI_PROPERTY(name) rows->emplace(#name, Prop::name);
        GENAPI_PROPERTIES(GENAPI_PROPERTY)
#undef GENAPI_PROPERTY
        return rows;
    }();
    const auto found = table->find(name);
    return found == table->end() ? std::nullopt : std::optional(found->second);
}

std::string_view Property::Text() const { return Trim(element_.child_value()); }

std::string_view Property::Attribute(const char *name) const { return Trim(element_.attribute(name).value()); }

std::int64_t Property::ParseInt(std::string_view text) const
{
    text = Trim(text);
    std::string_view digits = text;
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+'))
        digits.remove_prefix(1);
    const bool hex = HasHexPrefix(digits);
    if (hex)
        digits.remove_prefix(2);
    std::uint64_t magnitude = 0;
    if (!Parse(digits, magnitude, hex ? 16 : 10))
        Fail(Say("'", text, "' is no integer"));
    // A hexadecimal number is a pattern of 64 bits; a decimal one must fit.
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if (!hex && magnitude > most + (negative ? 1 : 0))
        Fail(Say("'", text, "' fits no 64-bit integer"));
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

std::string_view Property::Kept() const { return loader_.Keep(Text()); }

std::string_view Property::KeptAttribute(const char *name) const { return loader_.Keep(Attribute(name)); }

bool Property::IsInt() const
{
    const std::string_view text = Text();
    return text.find_first_of("xX") != text.npos || text.find_first_of(".eE") == text.npos;
}

double Property::ParseFloat(std::string_view text) const
{
    text = Trim(text);
    std::string_view digits = text;
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    if (HasHexPrefix(digits))
        return static_cast<double>(ParseInt(digits));
    double value = 0;
    if (!Parse(digits, value) || value != value)
        Fail(Say("'", text, "' is no number"));
    return value;
}

std::uint64_t Property::Hex() const
{
    std::string_view digits = Text();
    if (HasHexPrefix(digits))
        digits.remove_prefix(2);
    std::uint64_t value = 0;
    if (!Parse(digits, value, 16))
        Fail(Say("'", Text(), "' is no hexadecimal number"));
    return value;
}

bool Property::YesNo() const
{
    constexpr std::string_view words[] = {"No", "Yes", "false", "true", "0", "1"};
    return OneOf<int>(words) % 2 == 1;
}

std::size_t Property::IndexIn(const std::string_view *names, std::size_t n) const
{
    const std::string_view text = Text();
    for (std::size_t i = 0; i < n; ++i)
        if (names[i] == text)
            return i;
    std::string known;
    for (std::size_t i = 0; i < n; ++i)
        known += (i == 0 ? "" : ", ") + std::string(names[i]);
    Fail(Say("'", text, "' is none of ", known));
}

Node *Property::Target(Role role) const { return Link(Text(), role); }

Node *Property::Link(std::string_view name, Role role) const
{
    Node *const target = loader_.Resolve(name);
    if (target == nullptr)
        Fail(Say("there is no node '", name, "'"));
    loader_.AddLink(owner_, *target, role);
    return target;
}

Node *Property::AttributeTarget(const char *name, Role role) const { return Link(Attribute(name), role); }

Node *Property::Inner(Role role) const
{
    Node *const target = loader_.InnerNode(element_);
    if (target == nullptr)
        Fail("it stands where none can");
    loader_.AddLink(owner_, *target, role);
    return target;
}

void Property::Fail(const std::string &why) const
{
    throw Error(
        Say("[", owner_.Name(), "] line ", std::to_string(loader_.LineOf(element_)), ": ", element_.name(), ", ", why));
}

void FailLoading(const Loader &loader, const Node &node, const std::string &why)
{
    throw Error(Say("[", node.Name(), "] line ", std::to_string(loader.LineOf(node)), ": ", node.KindName(), " ", why));
}

} // namespace Orvi::GenApi
