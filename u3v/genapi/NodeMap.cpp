#include "u3v/genapi/NodeMap.h"

#include "u3v/core/Status.h"
#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/Loader.h"
#include "u3v/genapi/PlainNodes.h"
#include "u3v/genapi/PortNode.h"
#include "u3v/genapi/RegisterNodes.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

struct NodeMap::Content {
    Content(Port &port, Clock clock) : state(port, std::move(clock)) {}

    mutable std::recursive_mutex mutex;
    NodeTable table;
    MapState state;
};

/// One call on one node: the lock, the node, and how to work.
struct NodeMap::Call {
    Call(const NodeMap &map, NodeId id) : lock(map.content_->mutex), node(map.At(id)), run{map.content_->state, node}
    {
        run.map.BeginCall();
    }
    Call(const NodeMap &map, NodeId id, ReadOptions options) : Call(map, id)
    {
        run.verify = options.verify;
        run.ignoreCache = options.ignoreCache;
    }
    Call(const NodeMap &map, NodeId id, Verify verify) : Call(map, id) { run.verify = verify == Verify::Yes; }

    Call &Is(NodeType type, std::string_view wanted)
    {
        if (node.Type() != type)
            node.FailKind(run, wanted);
        return *this;
    }
    // clang-format off
    Call &Integer()     { return Is(NodeType::Integer, "an integer"); }
    Call &Float()       { return Is(NodeType::Float, "a float"); }
    Call &Boolean()     { return Is(NodeType::Boolean, "a boolean"); }
    Call &String()      { return Is(NodeType::String, "a string"); }
    Call &Enumeration() { return Is(NodeType::Enumeration, "an enumeration"); }
    // clang-format on
    template <class T>
    T &As(std::string_view wanted)
    {
        if (auto *const wantedNode = dynamic_cast<T *>(&node))
            return *wantedNode;
        node.FailKind(run, wanted);
    }
    EnumerationNode &Choice() { return As<EnumerationNode>("an enumeration"); }
    EnumEntryNode &ChoiceEntry() { return As<EnumEntryNode>("an entry of an enumeration"); }
    RegisterNode &Register() { return As<RegisterNode>("a register"); }

    Call &Readable()
    {
        node.RequireReadable(run);
        return *this;
    }
    template <class F>
    void Write(F &&write)
    {
        node.RequireWritable(run);
        write();
        node.CheckError(run);
    }
    void CheckIndex(std::uint32_t index, std::size_t size, std::string_view what) const
    {
        if (index >= size)
            node.Fail(
                run, Say("has ", std::to_string(size), " ", what, ", index ", std::to_string(index), " was asked for"));
    }
    template <class T>
    T InRange(T value, const Limits<T> &limits) const
    {
        if (value < limits.min || value > limits.max)
            node.Fail(run, Say("reads ", Text(value), ", its range is ", Text(limits.min), " to ", Text(limits.max)));
        return value;
    }

    std::lock_guard<std::recursive_mutex> lock;
    Node &node;
    Run run;
};

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
std::string_view NodeMap::Description(NodeId id) const         { return At(id).Said().description; }
std::string_view NodeMap::ToolTip(NodeId id) const             { return At(id).Said().toolTip; }
std::string_view NodeMap::DocuUrl(NodeId id) const             { return At(id).Said().docuUrl; }
Visibility       NodeMap::NodeVisibility(NodeId id) const      { return At(id).Said().visibility; }
CachingMode      NodeMap::Caching(NodeId id) const             { return content_->state.CachingOf(At(id)); }
DisplayNotation  NodeMap::Notation(NodeId id) const            { return At(id).Said().displayNotation; }
std::int64_t     NodeMap::DisplayPrecision(NodeId id) const    { return At(id).Said().displayPrecision; }
bool             NodeMap::IsFeature(NodeId id) const           { return At(id).Said().feature; }
bool             NodeMap::IsStreamable(NodeId id) const        { return At(id).Said().streamable; }
bool             NodeMap::IsDeprecated(NodeId id) const        { return At(id).Said().deprecated; }
bool             NodeMap::IsSelector(NodeId id) const          { return At(id).LinkTo(Role::Selected) != nullptr; }
std::optional<std::uint64_t> NodeMap::EventId(NodeId id) const { return At(id).Said().eventId; }
// clang-format on

std::optional<NodeId> NodeMap::Find(std::string_view name) const
{
    const auto found = content_->table.byName.find(name);
    return found == content_->table.byName.end() ? std::nullopt : std::optional(found->second->Id());
}

std::string_view NodeMap::DisplayName(NodeId id) const
{
    const Node &node = At(id);
    return node.Said().displayName.empty() ? node.Name() : node.Said().displayName;
}

std::string_view NodeMap::Unit(NodeId id) const
{
    for (const Node *node = &At(id); node != nullptr; node = node->LinkTo(Role::Value))
        if (!node->Said().unit.empty())
            return node->Said().unit;
    return {};
}

Representation NodeMap::NodeRepresentation(NodeId id) const
{
    for (const Node *node = &At(id); node != nullptr; node = node->LinkTo(Role::Value))
        if (node->Said().representation != Representation::Undefined)
            return node->Said().representation;
    return Representation::Undefined;
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
    return Call(*this, category).As<CategoryNode>("a category").Features();
}

NodeId NodeMap::Feature(NodeId category, std::uint32_t index) const
{
    Call call(*this, category);
    const auto &features = call.As<CategoryNode>("a category").Features();
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

std::int64_t NodeMap::GetInt(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    const std::int64_t value = call.Integer().Readable().node.GetInt(call.run);
    return options.verify ? call.InRange(value, call.node.IntLimits(call.run)) : value;
}

void NodeMap::SetInt(NodeId id, std::int64_t value, Verify verify)
{
    Call call(*this, id, verify);
    call.Integer().Write([&] { call.node.SetInt(call.run, value); });
}

std::int64_t NodeMap::IntMin(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntLimits(call.run).min;
}

std::int64_t NodeMap::IntMax(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntLimits(call.run).max;
}

std::int64_t NodeMap::IntInc(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntInc(call.run);
}

double NodeMap::GetFloat(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    const double value = call.Float().Readable().node.GetFloat(call.run);
    return options.verify ? call.InRange(value, call.node.FloatLimits(call.run)) : value;
}

void NodeMap::SetFloat(NodeId id, double value, Verify verify)
{
    Call call(*this, id, verify);
    call.Float().Write([&] { call.node.SetFloat(call.run, value); });
}

double NodeMap::FloatMin(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatLimits(call.run).min;
}

double NodeMap::FloatMax(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatLimits(call.run).max;
}

std::optional<double> NodeMap::FloatInc(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatInc(call.run);
}

bool NodeMap::GetBool(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.Boolean().Readable().node.GetInt(call.run) != 0;
}

void NodeMap::SetBool(NodeId id, bool value, Verify verify)
{
    Call call(*this, id, verify);
    call.Boolean().Write([&] { call.node.SetInt(call.run, value); });
}

void NodeMap::Execute(NodeId id, Verify verify)
{
    Call call(*this, id, verify);
    auto &command = call.As<CommandNode>("a command");
    call.Write([&] { command.Execute(call.run); });
}

bool NodeMap::IsDone(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.As<CommandNode>("a command").IsDone(call.run);
}

std::string NodeMap::GetString(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.String().Readable().node.GetText(call.run);
}

void NodeMap::SetString(NodeId id, std::string_view value, Verify verify)
{
    Call call(*this, id, verify);
    call.String().Write([&] { call.node.SetText(call.run, value); });
}

std::uint32_t NodeMap::EntryCount(NodeId id) const
{
    return static_cast<std::uint32_t>(Call(*this, id).Choice().Entries().size());
}

NodeId NodeMap::Entry(NodeId id, std::uint32_t index) const
{
    Call call(*this, id);
    const auto &entries = call.Choice().Entries();
    call.CheckIndex(index, entries.size(), "entries");
    return entries[index]->Id();
}

NodeId NodeMap::CurrentEntry(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.Enumeration().Readable().Choice().Current(call.run).Id();
}

std::int64_t NodeMap::GetEnumInt(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    EnumerationNode &choice = call.Enumeration().Readable().Choice();
    return options.verify ? choice.Current(call.run).Number() : choice.GetInt(call.run);
}

void NodeMap::SetEnumInt(NodeId id, std::int64_t value, Verify verify)
{
    Call call(*this, id, verify);
    call.Enumeration().Write([&] { call.node.SetInt(call.run, value); });
}

std::string_view NodeMap::GetEnumText(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.Enumeration().Readable().Choice().Current(call.run).Symbol();
}

void NodeMap::SetEnumText(NodeId id, std::string_view symbol, Verify verify)
{
    Call call(*this, id, verify);
    call.Enumeration().Write([&] { call.node.SetText(call.run, symbol); });
}

std::int64_t NodeMap::EntryInt(NodeId entry) const { return Call(*this, entry).ChoiceEntry().Number(); }

double NodeMap::EntryNumericValue(NodeId entry) const { return Call(*this, entry).ChoiceEntry().NumericValue(); }

std::string_view NodeMap::EntryText(NodeId entry) const { return Call(*this, entry).ChoiceEntry().Symbol(); }

std::uint64_t NodeMap::RegisterAddress(NodeId id) const
{
    Call call(*this, id);
    return call.Register().AddressNow(call.run);
}

std::size_t NodeMap::RegisterLength(NodeId id) const
{
    Call call(*this, id);
    return call.Register().LengthNow(call.run);
}

void NodeMap::GetBytes(NodeId id, std::span<std::byte> data, ReadOptions options) const
{
    Call call(*this, id, options);
    RegisterNode &reg = call.Register();
    call.Readable();
    if (const std::size_t length = reg.LengthNow(call.run); data.size() > length)
        call.node.Fail(call.run,
                       Say("cannot give ", std::to_string(data.size()), " bytes, it has ", std::to_string(length)));
    reg.Read(call.run, data);
}

void NodeMap::SetBytes(NodeId id, std::span<const std::byte> data, Verify verify)
{
    Call call(*this, id, verify);
    RegisterNode &reg = call.Register();
    if (const std::size_t length = reg.LengthNow(call.run); data.size() > length)
        call.node.Fail(call.run,
                       Say("cannot take ", std::to_string(data.size()), " bytes, it has ", std::to_string(length)));
    call.Write([&] { reg.Write(call.run, data); });
}

std::vector<NodeId> NodeMap::DeliverEvent(std::uint64_t eventId, std::span<const std::byte> payload)
{
    const auto lock = Lock();
    std::vector<NodeId> nodes;
    for (const auto &node : content_->state.nodes) {
        if (node->Said().eventId != eventId)
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
        if (auto *const port = dynamic_cast<PortNode *>(node.get()); port != nullptr && port->ChunkId() == chunkId)
            port->Deliver(data);
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
