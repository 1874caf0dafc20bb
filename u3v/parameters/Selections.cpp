#include "u3v/parameters/Selections.h"

#include "u3v/core/Log.h"
#include "u3v/parameters/FeatureText.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

using GenApi::NodeId;
using GenApi::NodeMap;
using GenApi::NodeType;

constexpr std::int64_t maxSelectorValues = 65536;

void AddSelectorsOf(const NodeMap &nodes, NodeId feature, std::vector<NodeId> &path, std::vector<NodeId> &found)
{
    path.push_back(feature);
    for (const NodeId selector : nodes.Selectors(feature))
        // Selectors that select one another are allowed; each is moved once.
        if (std::find(path.begin(), path.end(), selector) == path.end() &&
            std::find(found.begin(), found.end(), selector) == found.end()) {
            AddSelectorsOf(nodes, selector, path, found);
            found.push_back(selector);
        }
    path.pop_back();
}

} // namespace

bool IsSetting(const NodeMap &nodes, NodeId id)
{
    // The lock of the running acquisition is the host's, not a setting.
    return HasText(nodes, id) && !nodes.IsSelector(id) && nodes.Name(id) != "TLParamsLocked";
}

std::vector<NodeId> PersistentFeatures(const NodeMap &nodes)
{
    std::vector<NodeId> marked, listed;
    for (NodeId id = 0; id < nodes.Size(); ++id) {
        if (!IsSetting(nodes, id))
            continue;
        if (nodes.IsStreamable(id))
            marked.push_back(id);
        if (nodes.IsFeature(id) && nodes.Type(id) != NodeType::String)
            listed.push_back(id);
    }
    return marked.empty() ? listed : marked;
}

std::vector<NodeId> SelectorsOf(const NodeMap &nodes, NodeId feature)
{
    std::vector<NodeId> path, found;
    AddSelectorsOf(nodes, feature, path, found);
    return found;
}

SelectorMover::~SelectorMover()
{
    for (const auto &[selector, value] : before_) {
        try {
            if (ReadText(nodes_, selector) != value)
                WriteText(nodes_, selector, value);
        } catch (const std::exception &error) {
            LogDevice(CAM_LOG_LEVEL_WARN, "selector not put back: %s", error.what());
        }
    }
}

void SelectorMover::Move(NodeId selector, const std::string &value)
{
    const std::string now = ReadText(nodes_, selector);
    if (now == value)
        return;
    const bool isKnown =
        std::any_of(before_.begin(), before_.end(), [&](const auto &moved) { return moved.first == selector; });
    if (!isKnown)
        before_.emplace_back(selector, now);
    WriteText(nodes_, selector, value);
}

void SelectorMover::Move(const Selection &selection)
{
    for (const auto &[selector, value] : selection.selectors)
        Move(selector, value);
}

void SelectorMover::ForEach(NodeId feature, const std::function<void(const Selection &)> &visit)
{
    std::vector<NodeId> selectors = SelectorsOf(nodes_, feature);
    std::erase_if(selectors, [&](NodeId id) { return !HasText(nodes_, id) || !IsReadable(nodes_.Access(id)); });
    Selection selection{feature, {}};
    Step(selectors, selection, visit);
}

void SelectorMover::Step(const std::vector<NodeId> &selectors, Selection &selection,
                         const std::function<void(const Selection &)> &visit)
{
    const std::size_t depth = selection.selectors.size();
    if (depth == selectors.size())
        return visit(selection);
    for (const std::string &value : ValuesOf(selectors[depth])) {
        Move(selectors[depth], value);
        selection.selectors.emplace_back(selectors[depth], value);
        Step(selectors, selection, visit);
        selection.selectors.pop_back();
    }
}

std::vector<std::string> SelectorMover::ValuesOf(NodeId selector) const
{
    if (!IsWritable(nodes_.Access(selector)))
        return {ReadText(nodes_, selector)};
    std::vector<std::string> values;
    if (nodes_.Type(selector) == NodeType::Enumeration) {
        for (std::uint32_t i = 0; i < nodes_.EntryCount(selector); ++i)
            if (const NodeId entry = nodes_.Entry(selector, i); IsReadable(nodes_.Access(entry)))
                values.emplace_back(nodes_.EntryText(entry));
    } else if (nodes_.Type(selector) == NodeType::Integer) {
        const std::int64_t min = nodes_.IntMin(selector), max = nodes_.IntMax(selector);
        const std::int64_t increment = std::max<std::int64_t>(nodes_.IntInc(selector), 1);
        const auto count =
            (static_cast<std::uint64_t>(max) - static_cast<std::uint64_t>(min)) / static_cast<std::uint64_t>(increment);
        if (max >= min && count < maxSelectorValues)
            for (std::int64_t i = 0; i <= static_cast<std::int64_t>(count); ++i)
                values.push_back(std::to_string(min + i * increment));
    } else if (nodes_.Type(selector) == NodeType::Boolean) {
        values = {"false", "true"};
    }
    return values.empty() ? std::vector{ReadText(nodes_, selector)} : values;
}

} // namespace Orvi::U3v
