#include "vcam/Faults.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace Orvi::Vcam {

namespace {

struct MomentRow {
    FaultMoment moment;
    std::string_view name;
};

struct ActionRow {
    FaultAction action;
    std::string_view name;
    std::int64_t minimum, maximum; ///< of the amount; equal: the action has none
};

constexpr std::int64_t s_anySize = std::int64_t{1} << 40, s_hour = 3600000;
constexpr std::uint64_t s_yearLong = 31536000000; // ms

// clang-format off
constexpr MomentRow s_moments[] = {
    {FaultMoment::Frame,   "frame"},
    {FaultMoment::Command, "command"},
    {FaultMoment::Write,   "write"},
    {FaultMoment::Time,    "time"},
};

constexpr ActionRow s_actions[] = {
    {FaultAction::LoseFrame,      "lose-frame",       0,          0},
    {FaultAction::Truncate,       "truncate",         0,          s_anySize},
    {FaultAction::CutPayload,     "cut-payload",      0,          s_anySize},
    {FaultAction::TrailerStatus,  "trailer-status",   1,          0xFFFF},
    {FaultAction::LoseLeader,     "lose-leader",      0,          0},
    {FaultAction::LoseTrailer,    "lose-trailer",     0,          0},
    {FaultAction::BadLeader,      "bad-leader",       0,          0},
    {FaultAction::BadTrailer,     "bad-trailer",      0,          0},
    {FaultAction::ShiftBlockId,   "shift-block-id",   -s_anySize, s_anySize},
    {FaultAction::ShiftTrailerId, "shift-trailer-id", -s_anySize, s_anySize},
    {FaultAction::StallStream,    "stall-stream",     0,          s_anySize},
    {FaultAction::DelayAck,       "delay-ack",        1,          s_hour},
    {FaultAction::PendingAck,     "pending-ack",      0,          0xFFFF},
    {FaultAction::LoseAck,        "lose-ack",         0,          0},
    {FaultAction::ShiftRequestId, "shift-request-id", -0xFFFF,    0xFFFF},
    {FaultAction::ErrorAck,       "error-ack",        0x8000,     0xFFFF},
    {FaultAction::StallControl,   "stall-control",    0,          1},
    {FaultAction::StallEvents,    "stall-events",     0,          0},
    {FaultAction::EventBurst,     "event-burst",      1,          100000},
    {FaultAction::BadEvents,      "bad-events",       1,          100000},
    {FaultAction::Poke,           "poke",             0,          0xFFFFFFFF},
    {FaultAction::Trigger,        "trigger",          0,          0},
    {FaultAction::Unplug,         "unplug",           0,          s_hour},
};
// clang-format on
static_assert(std::size(s_actions) == static_cast<std::size_t>(FaultAction::Count));

template <class Row>
const Row *FindRow(std::span<const Row> rows, std::string_view name)
{
    const auto row = std::ranges::find(rows, name, &Row::name);
    return row == rows.end() ? nullptr : &*row;
}

template <class Row>
std::string Names(std::span<const Row> rows)
{
    std::string names;
    for (const Row &row : rows) {
        names += names.empty() ? "" : ", ";
        names += row.name;
    }
    return names;
}

const ActionRow &RowOf(FaultAction action) { return s_actions[static_cast<std::size_t>(action)]; }

} // namespace

std::optional<FaultMoment> FindFaultMoment(std::string_view name)
{
    const MomentRow *row = FindRow<MomentRow>(s_moments, name);
    return row == nullptr ? std::nullopt : std::optional(row->moment);
}

std::optional<FaultAction> FindFaultAction(std::string_view name)
{
    const ActionRow *row = FindRow<ActionRow>(s_actions, name);
    return row == nullptr ? std::nullopt : std::optional(row->action);
}

std::string_view NameOf(FaultMoment moment) { return s_moments[static_cast<std::size_t>(moment)].name; }
std::string_view NameOf(FaultAction action) { return RowOf(action).name; }
std::string FaultMomentNames() { return Names<MomentRow>(s_moments); }
std::string FaultActionNames() { return Names<ActionRow>(s_actions); }

FaultProblem ProblemOf(const FaultRule &rule)
{
    const bool isTime = rule.moment == FaultMoment::Time, isWrite = rule.moment == FaultMoment::Write;
    if (rule.every == 0) {
        return {"every", "is at least 1"};
    }
    if (!(rule.probability >= 0 && rule.probability <= 1)) {
        return {"probability", "lies between 0 and 1"};
    }
    if (isTime && !rule.at && rule.every == 1) {
        return {"at", "is missing: a time needs 'at' or 'every', in ms"};
    }
    if (isTime && std::max({rule.at.value_or(0), rule.every, rule.from}) > s_yearLong) {
        return {rule.at ? "at" : rule.every > s_yearLong ? "every" : "from", "is more than a year"};
    }
    if (isWrite && !rule.address) {
        return {"address", "is missing: of which register?"};
    }
    if (rule.address && !isWrite && rule.moment != FaultMoment::Command) {
        return {"address", "belongs to commands and writes alone"};
    }
    if (rule.address && *rule.address % 4 != 0) {
        return {"address", "is no multiple of 4"};
    }
    const ActionRow &row = RowOf(rule.action);
    const std::string name(row.name);
    if (rule.amount < row.minimum || rule.amount > row.maximum) {
        return {"amount", row.minimum == row.maximum ? name + " has none"
                                                     : "of " + name + " lies between " + std::to_string(row.minimum) +
                                                           " and " + std::to_string(row.maximum)};
    }
    if (row.minimum < 0 && rule.amount == 0) {
        return {"amount", "of " + name + " is missing: 0 changes nothing"};
    }
    if (rule.target != 0 && rule.action != FaultAction::Poke) {
        return {"target", "belongs to poke alone"};
    }
    if (rule.target % 4 != 0) {
        return {"target", "is no multiple of 4"};
    }
    return {};
}

} // namespace Orvi::Vcam
