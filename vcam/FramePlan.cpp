#include "vcam/FramePlan.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t s_wrongPrefix = 0x58563355; // "U3VX"

} // namespace

bool IsAboutFrame(FaultAction action) { return action <= FaultAction::StallStream; }
bool IsAboutAck(FaultAction action) { return !IsAboutFrame(action) && action <= FaultAction::StallControl; }

FramePlan PlanFrame(std::uint64_t block, std::size_t payload, const std::vector<FaultRule> &faults)
{
    FramePlan plan{.leaderId = block, .trailerId = block, .sent = payload, .valid = payload};
    for (const FaultRule &fault : faults) {
        const auto amount = static_cast<std::uint64_t>(fault.amount);
        switch (fault.action) {
        case FaultAction::LoseFrame:
            plan.isLost = true;
            break;
        case FaultAction::Truncate:
            plan.sent = plan.valid = std::min<std::uint64_t>(plan.sent, amount);
            break;
        case FaultAction::CutPayload:
            plan.sent = std::min<std::uint64_t>(plan.sent, amount);
            break;
        case FaultAction::TrailerStatus:
            plan.status = static_cast<std::uint16_t>(amount);
            break;
        case FaultAction::LoseLeader:
            plan.hasLeader = false;
            break;
        case FaultAction::LoseTrailer:
            plan.hasTrailer = false;
            break;
        case FaultAction::BadLeader:
            plan.leaderPrefix = s_wrongPrefix;
            break;
        case FaultAction::BadTrailer:
            plan.trailerPrefix = s_wrongPrefix;
            break;
        case FaultAction::ShiftBlockId:
            plan.leaderId += amount;
            plan.trailerId += amount;
            break;
        case FaultAction::ShiftTrailerId:
            plan.trailerId += amount;
            break;
        case FaultAction::StallStream:
            plan.stallAt = std::min<std::uint64_t>(payload, amount);
            break;
        default:
            break;
        }
    }
    return plan;
}

} // namespace Orvi::Vcam
