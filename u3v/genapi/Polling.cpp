// Polling times, from the nodes that have one to all registers that are to be read anew in time: the polled value's
// own, and those that a change of it would make stale, since nobody may read the polled node itself.

#include "u3v/genapi/Loader.h"
#include "u3v/genapi/RegisterNodes.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

constexpr bool IsMadeOf(Role role)
{
    return role == Role::Value || role == Role::Index || role == Role::Variable || role == Role::VariableLimit ||
           role == Role::Limit || role == Role::ValidSet;
}

class Spreading {
  public:
    explicit Spreading(const MapState &state)
        : state_(state), isPolled_(state.nodes.size()), isSource_(state.nodes.size()), isStale_(state.nodes.size())
    {
        std::vector<Node *> polled;
        bool invalidators = false;
        for (const auto &node : state.nodes) {
            if (node->More().pollingTime > 0)
                polled.push_back(node.get());
            for (const Link &link : node->Links())
                invalidators |= link.role == Role::Invalidator;
        }
        if (invalidators && !polled.empty())
            ListReferrers();
        // The shortest times first: each node is met once, with the time that counts.
        std::ranges::stable_sort(polled, {}, [](const Node *node) { return node->More().pollingTime; });
        for (Node *const node : polled) {
            time_ = node->More().pollingTime;
            block_ = node->LinkTo(Role::BlockPolling);
            PollValue(*node);
            Spread();
        }
    }

  private:
    void ListReferrers()
    {
        referrers_.resize(state_.nodes.size());
        for (const auto &node : state_.nodes)
            for (const Link &link : node->Links())
                if (IsMadeOf(link.role) || link.role == Role::Invalidator)
                    referrers_[link.target->Id()].push_back({node.get(), link.role});
    }

    void PollValue(Node &node)
    {
        if (isPolled_[node.Id()])
            return;
        isPolled_[node.Id()] = true;
        Refresh(node);
        for (const Link &link : node.Links())
            if (link.role == Role::Value)
                PollValue(*link.target);
    }

    /// A register is polled; whatever it is, its value may be another one then.
    void Refresh(Node &node)
    {
        if (auto *const reg = dynamic_cast<RegisterNode *>(&node))
            reg->Poll(time_, block_);
        Push(sources_, isSource_, node);
    }

    static void Push(std::vector<Node *> &list, std::vector<bool> &met, Node &node)
    {
        if (!met[node.Id()]) {
            met[node.Id()] = true;
            list.push_back(&node);
        }
    }

    void Spread()
    {
        while (!sources_.empty() || !stale_.empty()) {
            if (!stale_.empty()) {
                Node &node = Pop(stale_);
                Refresh(node);
                for (const Link &link : node.Links())
                    if (IsMadeOf(link.role))
                        Push(stale_, isStale_, *link.target);
            } else if (Node &node = Pop(sources_); !referrers_.empty()) {
                for (const Link &link : referrers_[node.Id()])
                    if (link.role == Role::Invalidator)
                        Push(stale_, isStale_, *link.target);
                    else
                        Push(sources_, isSource_, *link.target);
            }
        }
    }

    static Node &Pop(std::vector<Node *> &list)
    {
        Node *const node = list.back();
        list.pop_back();
        return *node;
    }

    const MapState &state_;
    std::vector<std::vector<Link>> referrers_;
    std::vector<bool> isPolled_, isSource_, isStale_;
    std::vector<Node *> sources_; ///< their values change with the polled one
    std::vector<Node *> stale_;   ///< and all that these are made of
    std::int64_t time_ = 0;
    Node *block_ = nullptr;
};

} // namespace

void SpreadPolling(const MapState &state) { Spreading spread(state); }

} // namespace Orvi::GenApi
