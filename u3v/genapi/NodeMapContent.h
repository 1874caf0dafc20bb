#pragma once
// What is inside a NodeMap, and the frame of its calls.

#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/Loader.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/genapi/PlainNodes.h"
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
    // clang-format on
    /// For the types that one class alone implements.
    template <class T>
    T &As(NodeType type, std::string_view wanted)
    {
        return static_cast<T &>(Is(type, wanted).node);
    }
    EnumerationNode &Choice() { return As<EnumerationNode>(NodeType::Enumeration, "an enumeration"); }
    EnumerationNode &ReadableChoice()
    {
        EnumerationNode &choice = Choice();
        node.RequireReadable(run);
        return choice;
    }
    EnumEntryNode &ChoiceEntry() { return As<EnumEntryNode>(NodeType::EnumEntry, "an entry of an enumeration"); }
    CommandNode &Command() { return As<CommandNode>(NodeType::Command, "a command"); }
    CategoryNode &Category() { return As<CategoryNode>(NodeType::Category, "a category"); }
    RegisterNode &Register()
    {
        if (auto *const reg = dynamic_cast<RegisterNode *>(&node))
            return *reg;
        node.FailKind(run, "a register");
    }

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

} // namespace Orvi::GenApi
