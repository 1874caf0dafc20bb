#pragma once
// What of a frame goes to the host, and with what said about it: all and the truth, unless faults say otherwise.

#include "vcam/Faults.h"
#include "vcam/GenCpCodes.h"

namespace Orvi::Vcam {

struct FramePlan {
    bool isLost = false; ///< nothing is sent
    bool hasLeader = true, hasTrailer = true;
    std::uint32_t leaderPrefix = s_leaderPrefix, trailerPrefix = s_trailerPrefix;
    std::uint64_t leaderId, trailerId;
    std::size_t sent, valid; ///< bytes of the payload that are sent, and that the trailer claims
    std::uint16_t status = 0;
    std::optional<std::size_t> stallAt{}; ///< place in the payload; 0: before the leader

    /// The host cannot know which block this is.
    bool IsNameless() const { return isLost || !hasLeader || leaderPrefix != s_leaderPrefix; }
};

FramePlan PlanFrame(std::uint64_t block, std::size_t payload, const std::vector<FaultRule> &faults);

/// Whether an action is about a frame, or about an acknowledge.
bool IsAboutFrame(FaultAction action);
bool IsAboutAck(FaultAction action);

} // namespace Orvi::Vcam
