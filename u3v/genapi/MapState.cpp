#include "u3v/genapi/MapState.h"

#include "u3v/genapi/RegisterNodes.h"

namespace Orvi::GenApi {

namespace {

/// A change of the other changes what this node reads as.
constexpr bool CarriesValue(Role role)
{
    switch (role) {
    case Role::Value:
    case Role::Index:
    case Role::Variable:
    case Role::VariableLimit:
    case Role::Limit:
    case Role::ValidSet:
    case Role::Address:
    case Role::Condition:
        return true;
    default:
        return false;
    }
}

/// Walks nodes once each.
class Walk {
  public:
    explicit Walk(std::size_t size) : seen_(size) {}

    void Push(Node &node)
    {
        if (!seen_[node.Id()]) {
            seen_[node.Id()] = true;
            queue_.push_back(&node);
        }
    }
    Node *Pop()
    {
        if (queue_.empty())
            return nullptr;
        Node *const node = queue_.back();
        queue_.pop_back();
        return node;
    }
    bool Has(const Node &node) const { return seen_[node.Id()]; }

  private:
    std::vector<bool> seen_;
    std::vector<Node *> queue_;
};

/// All that the address of @p reg is made of.
Walk AddressOf(const Node &reg, std::size_t size)
{
    Walk all(size);
    for (const Link &link : reg.Links())
        if (link.role == Role::Address)
            all.Push(*link.target);
    while (Node *const node = all.Pop())
        for (const Link &link : node->Links())
            if (CarriesValue(link.role))
                all.Push(*link.target);
    return all;
}

} // namespace

std::chrono::milliseconds MapState::Now() const
{
    if (clock_)
        return clock_();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

void MapState::FailSteps(const Run &run, const Node &node)
{
    node.Fail(run, "takes more than " + std::to_string(maxSteps) + " steps to evaluate");
}

void MapState::Forget(Node &node)
{
    Walk below(nodes.size());
    below.Push(node);
    while (Node *const each = below.Pop()) {
        if (auto *const reg = dynamic_cast<RegisterNode *>(each))
            reg->ForgetValue(*this);
        for (const Link &link : each->Links())
            if (link.role == Role::Value)
                below.Push(*link.target);
    }
}

CachingMode MapState::CachingOf(Node &node) const
{
    CachingMode mode = CachingMode::WriteThrough;
    Walk below(nodes.size());
    below.Push(node);
    while (Node *const each = below.Pop()) {
        if (const auto own = each->OwnCaching(); own && mode != CachingMode::NoCache)
            mode = *own == CachingMode::WriteThrough ? mode : *own;
        for (const Link &link : each->Links())
            if (link.role == Role::Value || link.role == Role::Variable || link.role == Role::Index)
                below.Push(*link.target);
    }
    return mode;
}

void MapState::ListReferrers()
{
    referrers_.resize(nodes.size());
    for (const auto &node : nodes)
        for (const Link &link : node->Links())
            referrers_[link.target->Id()].push_back({node.get(), link.role});
}

MapState::Stale MapState::FindStale(Node &source)
{
    if (referrers_.empty())
        ListReferrers();
    Stale stale;
    Walk changed(nodes.size());
    changed.Push(source);

    // What a stale node reads is stale too. A selector's own register is not, nor are registers whose address moves
    // with the selector: there every value of the selector has its own place in the cache.
    const auto moves = [&](const Node &node, const Node &selector) {
        const Walk address = AddressOf(node, nodes.size());
        return address.Has(selector) || address.Has(source);
    };
    const auto addStale = [&](Node &from, const Node *selector) {
        const auto isSelector = [&](const Node &node) { return selector && (&node == selector || &node == &source); };
        Walk below(nodes.size());
        below.Push(from);
        while (Node *const node = below.Pop()) {
            if (auto *const reg = dynamic_cast<RegisterNode *>(node)) {
                if (!selector || !moves(*node, *selector)) {
                    stale.push_back(reg);
                    changed.Push(*node);
                }
            }
            for (const Link &link : node->Links())
                if (CarriesValue(link.role) && link.role != Role::Address && link.role != Role::Condition &&
                    !isSelector(*link.target))
                    below.Push(*link.target);
        }
        changed.Push(from);
    };

    while (Node *const node = changed.Pop()) {
        for (const Link &referrer : referrers_[node->Id()]) {
            if (CarriesValue(referrer.role))
                changed.Push(*referrer.target);
            else if (referrer.role == Role::Invalidator)
                addStale(*referrer.target, nullptr);
        }
        for (const Link &link : node->Links())
            if (link.role == Role::Selected)
                addStale(*link.target, node);
    }
    return stale;
}

void MapState::Changed(Node &node)
{
    if (stale_.empty())
        stale_.resize(nodes.size());
    auto &stale = stale_[node.Id()];
    if (!stale)
        stale = std::make_unique<const Stale>(FindStale(node));
    for (RegisterNode *reg : *stale)
        reg->ForgetValue(*this);
}

} // namespace Orvi::GenApi
