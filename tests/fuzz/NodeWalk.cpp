#include "tests/fuzz/NodeWalk.h"

#include "tests/fuzz/Targets.h"
#include "u3v/core/Status.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Fuzz {

using GenApi::NodeId;
using GenApi::NodeMap;
using GenApi::Verify;

namespace {

constexpr NodeId maxNodes = 64;
constexpr std::size_t maxBytes = 4096;

template <class Action>
void Try(Action action)
{
    try {
        action();
    } catch (const GenApi::Error &error) {
        Require(*error.what() != '\0', "an error has a text");
    } catch (const U3v::StatusError &) {
    }
}

void AskAttributes(const NodeMap &nodes, NodeId id)
{
    Require(nodes.Find(nodes.Name(id)).has_value(), "a node is found by its name");
    Require(!nodes.DisplayName(id).empty(), "every node has a display name");
    nodes.Type(id);
    nodes.KindName(id);
    nodes.Description(id);
    nodes.ToolTip(id);
    nodes.DocuUrl(id);
    Try([&] { nodes.Unit(id); });
    nodes.NodeVisibility(id);
    nodes.Caching(id);
    Try([&] { nodes.NodeRepresentation(id); });
    nodes.Notation(id);
    nodes.DisplayPrecision(id);
    nodes.IsStreamable(id);
    nodes.IsDeprecated(id);
    nodes.EventId(id);
    Try([&] { nodes.Access(id); });
    Try([&] { nodes.DescribeAccess(id); });
}

void AskRelations(const NodeMap &nodes, NodeId id)
{
    const auto isNode = [&](NodeId other) { return other < nodes.Size(); };
    Try([&] {
        const auto &features = nodes.Features(id);
        Require(std::all_of(features.begin(), features.end(), isNode), "a category lists nodes");
        nodes.Feature(id, static_cast<std::uint32_t>(features.size()));
    });
    Try([&] { nodes.Selected(id); });
    Try([&] { nodes.Selectors(id); });
    Try([&] { nodes.IsSelector(id); });
    Try([&] { nodes.Alias(id); });
    Try([&] { nodes.CastAlias(id); });
}

void UseNumbers(NodeMap &nodes, NodeId id)
{
    Try([&] { nodes.SetInt(id, nodes.GetInt(id, {.verify = true}), Verify::Yes); });
    Try([&] { nodes.SetInt(id, nodes.IntMin(id)); });
    Try([&] { nodes.SetInt(id, nodes.IntMax(id)); });
    Try([&] { Require(nodes.IntInc(id) > 0, "an increment is positive"); });
    Try([&] {
        const double value = nodes.GetFloat(id, {.verify = true});
        nodes.SetFloat(id, value, Verify::Yes);
    });
    Try([&] { nodes.SetFloat(id, nodes.FloatMin(id)); });
    Try([&] { nodes.SetFloat(id, nodes.FloatMax(id)); });
    Try([&] { nodes.SetFloat(id, std::nan("")); });
    Try([&] { nodes.FloatInc(id); });
    Try([&] { nodes.SetBool(id, !nodes.GetBool(id, {.ignoreCache = true})); });
}

void UseEntries(NodeMap &nodes, NodeId id)
{
    Try([&] { nodes.SetEnumText(id, nodes.GetEnumText(id), Verify::Yes); });
    Try([&] { nodes.SetEnumInt(id, nodes.GetEnumInt(id, {.verify = true})); });
    Try([&] { nodes.CurrentEntry(id); });
    Try([&] {
        for (std::uint32_t i = 0; i < std::min(nodes.EntryCount(id), maxNodes); ++i)
            nodes.SetEnumInt(id, nodes.EntryInt(nodes.Entry(id, i)));
        nodes.Entry(id, nodes.EntryCount(id));
    });
    Try([&] { nodes.EntryNumericValue(id); });
    Try([&] { nodes.EntryText(id); });
}

void UseBytes(NodeMap &nodes, NodeId id)
{
    Try([&] { nodes.SetString(id, nodes.GetString(id), Verify::Yes); });
    Try([&] { nodes.SetString(id, "text"); });
    Try([&] { nodes.RegisterAddress(id); });
    Try([&] {
        std::vector<std::byte> bytes(std::min(nodes.RegisterLength(id), maxBytes));
        nodes.GetBytes(id, bytes);
        nodes.SetBytes(id, bytes, Verify::Yes);
    });
}

} // namespace

void UseNodes(NodeMap &nodes)
{
    const NodeId count = std::min(nodes.Size(), maxNodes);
    for (NodeId id = 0; id < count; ++id) {
        AskAttributes(nodes, id);
        AskRelations(nodes, id);
        UseNumbers(nodes, id);
        UseEntries(nodes, id);
        UseBytes(nodes, id);
        Try([&] { nodes.Execute(id); });
        Try([&] { nodes.IsDone(id); });
        nodes.Invalidate(id);
        if (const auto event = nodes.EventId(id))
            Try([&] { nodes.DeliverEvent(*event, std::vector<std::byte>(64, std::byte{7})); });
    }
    Try([&] { nodes.GetInt(nodes.Size()); });
    nodes.Invalidate();
}

} // namespace Orvi::Fuzz
