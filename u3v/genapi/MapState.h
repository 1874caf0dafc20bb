#pragma once
// What the nodes of a map share while they work: the camera's memory, what is remembered of it, what depends on what,
// and the clock.

#include "u3v/genapi/Node.h"
#include "u3v/genapi/Port.h"
#include "u3v/genapi/RegisterCache.h"

#include <chrono>
#include <functional>
#include <memory>

namespace Orvi::GenApi {

class RegisterNode;

using Clock = std::function<std::chrono::milliseconds()>;

class MapState {
  public:
    MapState(Port &camera, Clock clock) : port(camera), clock_(std::move(clock)) {}

    Port &port;
    RegisterCache cache;
    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<Link> links; ///< those of each node together

    std::chrono::milliseconds Now() const;

    /// Counts one step of the present call. Nodes that use each other twice over many levels would never end: every
    /// node that asks more than one other counts a step.
    void Step(const Run &run, const Node &node)
    {
        if (++steps_ > maxSteps)
            FailSteps(run, node);
    }
    void BeginCall() { steps_ = 0; }

    /// The most careful mode among the registers that @p node's value is read from.
    CachingMode CachingOf(Node &node) const;

    /// Makes the next read of @p node's own value ask the camera.
    void Forget(Node &node);

    /// @p node has a new value: forgets what that makes stale. Where the value is kept calls it, not each node above.
    void Changed(Node &node);

  private:
    using Stale = std::vector<RegisterNode *>;
    static constexpr std::uint32_t maxSteps = 100000;

    [[noreturn]] void FailSteps(const Run &run, const Node &node);

    void ListReferrers();
    Stale FindStale(Node &node);

    Clock clock_;
    std::uint32_t steps_ = 0;
    std::vector<std::vector<Link>> referrers_;        ///< links backwards: target is the node that has the link
    std::vector<std::unique_ptr<const Stale>> stale_; ///< by node, as far as they have changed before
};

} // namespace Orvi::GenApi
