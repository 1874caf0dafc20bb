// Whether every node can be evaluated: it refers to nodes of the right types, nothing depends on itself, and no chain
// is too long for a thread's stack. A node is split into what can be asked of it, because the value of Width may well
// decide the maximum of OffsetX while the value of OffsetX decides the maximum of Width.

#include "u3v/genapi/Loader.h"
#include "u3v/genapi/Properties.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

namespace {

/// The kind of value that a link is followed for.
constexpr bool NeedsNumber(Role role)
{
    switch (role) {
    case Role::Value:
    case Role::Copy:
    case Role::Index:
    case Role::Variable:
    case Role::VariableLimit:
    case Role::Limit:
    case Role::Condition:
    case Role::Address:
    case Role::CommandValue:
    case Role::Error:
    case Role::ChunkId:
    case Role::BlockPolling:
        return true;
    default:
        return false;
    }
}

bool HasNumber(const Node &node)
{
    const NodeType type = node.Type();
    return type == NodeType::Integer || type == NodeType::Float || type == NodeType::Boolean ||
           type == NodeType::Enumeration || type == NodeType::EnumEntry || IsOfOtherBus(node);
}

enum Question : std::uint8_t { Value, Range, Access, Write, Tree, questions };

constexpr std::string_view questionNames[] = {"value", "range", "access mode", "writing", "tree of features"};

/// Asking this of the node asks that of the linked one.
constexpr struct {
    Role role;
    Question ofNode, ofTarget;
} rules[] = {
    // clang-format off
    {Role::Value,         Value,  Value},  {Role::Value,     Range,  Range},  {Role::Value,     Access, Access},
    {Role::Value,         Write,  Write},
    {Role::Copy,          Write,  Write},
    {Role::Index,         Value,  Value},  {Role::Index,     Range,  Value},  {Role::Index,     Access, Access},
    {Role::Index,         Write,  Value},
    {Role::Variable,      Value,  Value},  {Role::Variable,  Range,  Value},  {Role::Variable,  Access, Access},
    {Role::Variable,      Write,  Value},
    {Role::VariableLimit, Value,  Range},  {Role::VariableLimit, Range, Range}, {Role::VariableLimit, Write, Range},
    {Role::Limit,         Range,  Value},
    {Role::ValidSet,      Range,  Write},
    {Role::Condition,     Access, Value},
    {Role::Address,       Value,  Value},  {Role::Address,   Access, Access}, {Role::Address,   Write,  Value},
    {Role::Port,          Access, Access},
    {Role::CommandValue,  Write,  Value},  {Role::CommandValue, Value, Value},
    {Role::Error,         Write,  Value},
    {Role::Entry,         Write,  Access},
    {Role::Feature,       Tree,   Tree},
    // clang-format on
};

// Each level takes a few hundred bytes of stack while it is evaluated.
constexpr unsigned maxDepth = 200;

class DependencyCheck {
  public:
    DependencyCheck(const Loader &loader, const MapState &state)
        : loader_(loader), heights_(state.nodes.size() * questions)
    {
        for (const auto &node : state.nodes)
            for (std::uint8_t q = 0; q < questions; ++q)
                Height(*node, static_cast<Question>(q));
    }

  private:
    static constexpr std::uint16_t busy = 0xFFFF;

    std::uint16_t &Known(const Node &node, Question question) { return heights_[node.Id() * questions + question]; }

    /// How many levels lie below, this one included.
    std::uint16_t Height(const Node &node, Question question)
    {
        if (const std::uint16_t known = Known(node, question); known == busy)
            FailCycle(node, question);
        else if (known != 0)
            return known;
        Known(node, question) = busy;
        path_.push_back(&node);
        unsigned most = 0;
        const auto ask = [&](const Node &target, Question of) {
            if (path_.size() > maxDepth)
                FailLoading(loader_, *path_.front(), Deep());
            most = std::max<unsigned>(most, Height(target, of));
        };
        if (question == Write) {
            ask(node, Value);
            ask(node, Range);
        }
        for (const Link &link : node.Links())
            for (const auto &rule : rules)
                if (rule.role == link.role && rule.ofNode == question)
                    ask(*link.target, rule.ofTarget);
        path_.pop_back();
        if (most >= maxDepth)
            FailLoading(loader_, node, Deep());
        return Known(node, question) = static_cast<std::uint16_t>(most + 1);
    }

    static std::string Deep() { return "depends on other nodes over more than " + std::to_string(maxDepth) + " steps"; }

    [[noreturn]] void FailCycle(const Node &node, Question question) const
    {
        std::string path;
        auto from = path_.size() - 1;
        while (from > 0 && path_[from] != &node)
            --from;
        for (const Node *previous = nullptr; from < path_.size(); previous = path_[from], ++from)
            if (path_[from] != previous)
                path += std::string(path_[from]->Name()) + " -> ";
        FailLoading(loader_, node, Say("depends on itself for its ", questionNames[question], ", ", path, node.Name()));
    }

    const Loader &loader_;
    std::vector<std::uint16_t> heights_;
    std::vector<const Node *> path_;
};

} // namespace

void CheckTargets(const Loader &loader, const MapState &state)
{
    for (const auto &node : state.nodes)
        for (const Link &link : node->Links())
            if (NeedsNumber(link.role) && !HasNumber(*link.target) && node->Type() != NodeType::String)
                FailLoading(loader, *node,
                            Say("needs a number of ", link.target->Name(), ", which is a ", link.target->KindName()));
}

void CheckDependencies(const Loader &loader, const MapState &state) { DependencyCheck(loader, state); }

} // namespace Orvi::GenApi
