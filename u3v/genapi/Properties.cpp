#include "u3v/genapi/Properties.h"

#include "u3v/genapi/Loader.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

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

std::string_view Property::Text() const
{
    // A comment splits a text into pieces.
    const pugi::xml_node first = element_.first_child();
    if (!first.next_sibling())
        return Trim(first.value());
    std::string whole;
    for (const pugi::xml_node piece : element_.children())
        whole += piece.type() == pugi::node_element ? "" : piece.value();
    return Trim(loader_.Keep(whole));
}

std::string_view Property::Attribute(const char *name) const { return Trim(element_.attribute(name).value()); }

std::string_view Property::Kept() const { return loader_.Keep(Text()); }

std::string_view Property::KeptAttribute(const char *name) const { return loader_.Keep(Attribute(name)); }

std::int64_t Property::ParseInt(std::string_view text) const
{
    if (const auto value = ReadInt(text))
        return *value;
    text = Trim(text);
    const bool isLong = text.size() > 15 && text.find_first_not_of("+-0123456789abcdefABCDEFxX") == text.npos;
    Fail(Say("'", text, isLong ? "' fits no 64-bit integer" : "' is no integer"));
}

double Property::ParseFloat(std::string_view text) const
{
    if (const auto value = ReadFloat(text))
        return *value;
    Fail(Say("'", Trim(text), "' is no number"));
}

std::uint64_t Property::Hex() const
{
    if (const auto value = ReadHex(Text()))
        return *value;
    Fail(Say("'", Text(), "' is no hexadecimal number"));
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
