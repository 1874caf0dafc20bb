#include "u3v/genapi/NodeMap.h"

#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMapContent.h"
#include "u3v/genapi/PortNode.h"

namespace Orvi::GenApi {

NodeMap::NodeMap(std::unique_ptr<Content> content) : content_(std::move(content)) {}

NodeMap::~NodeMap() = default;

std::unique_ptr<NodeMap> NodeMap::Load(std::string_view xml, Port &port, const Options &options)
{
    auto content = std::make_unique<Content>(port, options.clock);
    Loader(xml, content->table, content->state).Load();
    return std::unique_ptr<NodeMap>(new NodeMap(std::move(content)));
}

std::unique_lock<std::recursive_mutex> NodeMap::Lock() const { return std::unique_lock(content_->mutex); }

Node &NodeMap::At(NodeId id) const
{
    const auto &nodes = content_->state.nodes;
    if (id >= nodes.size())
        throw U3v::StatusError(CAM_API_STS_INVALID_NODE_HANDLE, "the camera has no such node");
    return *nodes[id];
}

// What the description says never changes: no lock is needed for it.
// clang-format off
std::string_view NodeMap::ModelName() const                    { return content_->table.description.modelName; }
std::string_view NodeMap::VendorName() const                   { return content_->table.description.vendorName; }
const std::vector<std::string> &NodeMap::Notes() const         { return content_->table.description.notes; }
NodeId           NodeMap::Size() const                         { return static_cast<NodeId>(content_->state.nodes.size()); }
NodeType         NodeMap::Type(NodeId id) const                { return At(id).Type(); }
std::string_view NodeMap::KindName(NodeId id) const            { return At(id).KindName(); }
std::string_view NodeMap::Name(NodeId id) const                { return At(id).Name(); }
std::string_view NodeMap::Description(NodeId id) const         { return At(id).More().description; }
std::string_view NodeMap::ToolTip(NodeId id) const             { return At(id).More().toolTip; }
std::string_view NodeMap::DocuUrl(NodeId id) const             { return At(id).More().docuUrl; }
Visibility       NodeMap::NodeVisibility(NodeId id) const      { return At(id).Said().visibility; }
CachingMode      NodeMap::Caching(NodeId id) const             { return content_->state.CachingOf(At(id)); }
bool             NodeMap::IsFeature(NodeId id) const           { return At(id).Said().feature; }
bool             NodeMap::IsStreamable(NodeId id) const        { return At(id).Said().streamable; }
bool             NodeMap::IsDeprecated(NodeId id) const        { return At(id).Said().deprecated; }
bool             NodeMap::IsExposedStatic(NodeId id) const     { return At(id).Said().exposedStatic; }
std::int64_t     NodeMap::PollingTime(NodeId id) const         { return At(id).More().pollingTime; }
bool             NodeMap::IsSelector(NodeId id) const          { return At(id).LinkTo(Role::Selected) != nullptr; }
std::optional<std::uint64_t> NodeMap::EventId(NodeId id) const { return At(id).More().eventId; }
// clang-format on

std::optional<NodeId> NodeMap::Find(std::string_view name) const
{
    const Node *const node = content_->table.byName.Find(name);
    return node == nullptr ? std::nullopt : std::optional(node->Id());
}

std::string_view NodeMap::DisplayName(NodeId id) const
{
    const Node &node = At(id);
    return node.More().displayName.empty() ? node.Name() : node.More().displayName;
}

/// What the first of a node and those that hold its value says, by @p look.
template <class F>
static auto SaidAlongTheValue(const Node &first, F look) -> decltype(look(first))
{
    for (const Node *node = &first; node != nullptr; node = node->LinkTo(Role::Value))
        if (const auto said = look(*node); said != decltype(said)())
            return said;
    return {};
}

std::string_view NodeMap::Unit(NodeId id) const
{
    return SaidAlongTheValue(At(id), [](const Node &node) { return node.More().unit; });
}

Representation NodeMap::NodeRepresentation(NodeId id) const
{
    return SaidAlongTheValue(At(id), [](const Node &node) { return node.Said().representation; })
        .value_or(Representation::Undefined);
}

DisplayNotation NodeMap::Notation(NodeId id) const
{
    return SaidAlongTheValue(At(id), [](const Node &node) { return node.Said().displayNotation; })
        .value_or(DisplayNotation::Automatic);
}

std::int64_t NodeMap::DisplayPrecision(NodeId id) const
{
    return SaidAlongTheValue(At(id), [](const Node &node) { return node.More().displayPrecision; }).value_or(6);
}

AccessMode NodeMap::Access(NodeId id) const
{
    Call call(*this, id);
    return call.node.Access(call.run);
}

std::string NodeMap::DescribeAccess(NodeId id) const
{
    Call call(*this, id);
    return call.node.DescribeAccess(call.run);
}

const std::vector<NodeId> &NodeMap::Features(NodeId category) const
{
    return Call(*this, category).Category().Features();
}

NodeId NodeMap::Feature(NodeId category, std::uint32_t index) const
{
    Call call(*this, category);
    const auto &features = call.Category().Features();
    call.CheckIndex(index, features.size(), "features");
    return features[index];
}

std::vector<NodeId> NodeMap::Selected(NodeId selector) const
{
    std::vector<NodeId> selected;
    for (const Link &link : At(selector).Links())
        if (link.role == Role::Selected)
            selected.push_back(link.target->Id());
    return selected;
}

std::vector<NodeId> NodeMap::Selectors(NodeId feature) const
{
    const Node &node = At(feature);
    std::vector<NodeId> selectors;
    for (const auto &other : content_->state.nodes)
        for (const Link &link : other->Links())
            if (link.role == Role::Selected && link.target == &node)
                selectors.push_back(other->Id());
    return selectors;
}

static std::optional<NodeId> IdOf(const Node *node) { return node ? std::optional(node->Id()) : std::nullopt; }

std::optional<NodeId> NodeMap::Alias(NodeId id) const { return IdOf(At(id).LinkTo(Role::Alias)); }

std::optional<NodeId> NodeMap::CastAlias(NodeId id) const { return IdOf(At(id).LinkTo(Role::CastAlias)); }

std::vector<NodeId> NodeMap::DeliverEvent(std::uint64_t eventId, std::span<const std::byte> payload)
{
    const auto lock = Lock();
    std::vector<NodeId> nodes;
    for (const auto &node : content_->state.nodes) {
        if (node->More().eventId != eventId)
            continue;
        if (auto *const port = dynamic_cast<PortNode *>(node.get()))
            port->Deliver(payload);
        else
            nodes.push_back(node->Id());
    }
    for (const NodeId id : nodes)
        Invalidate(id);
    return nodes;
}

void NodeMap::DeliverChunk(std::uint64_t chunkId, std::span<const std::byte> data)
{
    const auto lock = Lock();
    for (const auto &node : content_->state.nodes)
        if (auto *const port = dynamic_cast<PortNode *>(node.get()); port != nullptr) {
            Call call(*this, port->Id());
            if (port->Shows(call.run, chunkId))
                port->Deliver(data);
        }
}

void NodeMap::Invalidate()
{
    const auto lock = Lock();
    content_->state.cache.ForgetAll();
}

void NodeMap::Invalidate(NodeId id)
{
    Call call(*this, id);
    content_->state.Forget(call.node);
    content_->state.Changed(call.node);
}

} // namespace Orvi::GenApi
