#include "u3v/parameters/FeatureText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Orvi::U3v {
namespace {

using GenApi::NodeId;
using GenApi::NodeMap;
using GenApi::NodeType;

[[noreturn]] void Fail(const NodeMap &nodes, NodeId id, std::string_view text, const char *wanted)
{
    throw GenApi::Error('[' + std::string(nodes.Name(id)) + "] '" + std::string(text) + "' is not " + wanted);
}

template <class T>
std::string NumberText(T value)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

template <class T>
T Number(const NodeMap &nodes, NodeId id, std::string_view text, const char *wanted)
{
    T value{};
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end)
        Fail(nodes, id, text, wanted);
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(value))
            Fail(nodes, id, text, wanted);
    return value;
}

std::int64_t Integer(const NodeMap &nodes, NodeId id, std::string_view text)
{
    return Number<std::int64_t>(nodes, id, text, "a whole number");
}

double Float(const NodeMap &nodes, NodeId id, std::string_view text)
{
    return Number<double>(nodes, id, text, "a number");
}

bool Boolean(const NodeMap &nodes, NodeId id, std::string_view text)
{
    if (text != "true" && text != "false")
        Fail(nodes, id, text, "true or false");
    return text == "true";
}

std::string_view EntryName(const NodeMap &nodes, NodeId id, std::string_view text)
{
    for (std::uint32_t i = 0; i < nodes.EntryCount(id); ++i)
        if (nodes.EntryText(nodes.Entry(id, i)) == text)
            return text;
    Fail(nodes, id, text, "one of its entries");
}

std::string Quoted(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        if (c == '\n')
            quoted += "\\n";
        else if (c == '\r')
            quoted += "\\r";
        else
            quoted += c;
    }
    return quoted + '"';
}

std::string Unquoted(const NodeMap &nodes, NodeId id, std::string_view text)
{
    constexpr const char *wanted = "a text in quotes";
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        Fail(nodes, id, text, wanted);
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        char c = text[i];
        if (c == '"')
            Fail(nodes, id, text, wanted);
        if (c == '\\') {
            if (++i + 1 >= text.size())
                Fail(nodes, id, text, wanted);
            c = text[i] == 'n' ? '\n' : text[i] == 'r' ? '\r' : text[i];
        }
        plain += c;
    }
    return plain;
}

std::string BytesText(const NodeMap &nodes, NodeId id)
{
    std::vector<std::byte> bytes(nodes.RegisterLength(id));
    nodes.GetBytes(id, bytes);
    std::string text = "0x";
    for (const std::byte b : bytes) {
        constexpr char digits[] = "0123456789ABCDEF";
        text += digits[std::to_integer<unsigned>(b) >> 4];
        text += digits[std::to_integer<unsigned>(b) & 0xF];
    }
    return text;
}

std::vector<std::byte> Bytes(const NodeMap &nodes, NodeId id, std::string_view text)
{
    constexpr const char *wanted = "0x and two digits for each byte";
    if (!text.starts_with("0x") || text.size() % 2 != 0)
        Fail(nodes, id, text, wanted);
    std::vector<std::byte> bytes;
    for (std::size_t i = 2; i < text.size(); i += 2) {
        unsigned value = 0;
        const char *const end = text.data() + i + 2;
        if (std::from_chars(text.data() + i, end, value, 16).ptr != end)
            Fail(nodes, id, text, wanted);
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

} // namespace

bool HasText(const NodeMap &nodes, NodeId id)
{
    constexpr NodeType types[] = {NodeType::Integer,     NodeType::Float,  NodeType::Boolean,
                                  NodeType::Enumeration, NodeType::String, NodeType::Register};
    return std::find(std::begin(types), std::end(types), nodes.Type(id)) != std::end(types);
}

std::string ReadText(const NodeMap &nodes, NodeId id)
{
    switch (nodes.Type(id)) {
    case NodeType::Integer:
        return NumberText(nodes.GetInt(id));
    case NodeType::Float:
        return NumberText(nodes.GetFloat(id));
    case NodeType::Boolean:
        return nodes.GetBool(id) ? "true" : "false";
    case NodeType::Enumeration:
        return std::string(nodes.GetEnumText(id));
    case NodeType::String:
        return Quoted(nodes.GetString(id));
    default:
        return BytesText(nodes, id);
    }
}

void WriteText(NodeMap &nodes, NodeId id, std::string_view text)
{
    switch (nodes.Type(id)) {
    case NodeType::Integer:
        return nodes.SetInt(id, Integer(nodes, id, text));
    case NodeType::Float:
        return nodes.SetFloat(id, Float(nodes, id, text));
    case NodeType::Boolean:
        return nodes.SetBool(id, Boolean(nodes, id, text));
    case NodeType::Enumeration:
        return nodes.SetEnumText(id, EntryName(nodes, id, text));
    case NodeType::String:
        return nodes.SetString(id, Unquoted(nodes, id, text));
    default:
        return nodes.SetBytes(id, Bytes(nodes, id, text));
    }
}

void CheckText(const NodeMap &nodes, NodeId id, std::string_view text)
{
    switch (nodes.Type(id)) {
    case NodeType::Integer:
        Integer(nodes, id, text);
        break;
    case NodeType::Float:
        Float(nodes, id, text);
        break;
    case NodeType::Boolean:
        Boolean(nodes, id, text);
        break;
    case NodeType::Enumeration:
        EntryName(nodes, id, text);
        break;
    case NodeType::String:
        Unquoted(nodes, id, text);
        break;
    default:
        Bytes(nodes, id, text);
    }
}

} // namespace Orvi::U3v
