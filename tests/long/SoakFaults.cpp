#include "tests/long/SoakFaults.h"

#include <cstdio>

namespace Orvi::Soak {

namespace {

using Vcam::FaultAction;
using Vcam::FaultMoment;

struct Choice {
    FaultAction action;
    std::int64_t least, most; ///< of the amount
    unsigned weight;
};

// clang-format off
constexpr Choice s_choices[] = {
    {FaultAction::LoseFrame,      0,      0,      8},
    {FaultAction::Truncate,       0,      5000,   4},
    {FaultAction::CutPayload,     1,      5000,   4},
    {FaultAction::TrailerStatus,  0xA100, 0xA102, 4},
    {FaultAction::LoseLeader,     0,      0,      2},
    {FaultAction::LoseTrailer,    0,      0,      2},
    {FaultAction::BadLeader,      0,      0,      2},
    {FaultAction::BadTrailer,     0,      0,      2},
    {FaultAction::ShiftBlockId,   -3,     100,    1},
    {FaultAction::ShiftTrailerId, 1,      3,      2},
    {FaultAction::StallStream,    0,      5000,   2},
    {FaultAction::DelayAck,       1,      50,     3},
    {FaultAction::PendingAck,     0,      1000,   3},
    {FaultAction::LoseAck,        0,      0,      2},
    {FaultAction::ShiftRequestId, 1,      9,      2},
    {FaultAction::ErrorAck,       0x8001, 0x800F, 2},
    {FaultAction::StallControl,   0,      1,      3},
    {FaultAction::StallEvents,    0,      0,      3},
    {FaultAction::EventBurst,     1,      200,    3},
    {FaultAction::BadEvents,      1,      20,     3},
    {FaultAction::Unplug,         1,      100,    1},
};
// clang-format on

const Choice &Choose(Random &random)
{
    std::uint64_t all = 0;
    for (const Choice &choice : s_choices) {
        all += choice.weight;
    }
    std::uint64_t drawn = Below(random, all);
    for (const Choice &choice : s_choices) {
        if (drawn < choice.weight) {
            return choice;
        }
        drawn -= choice.weight;
    }
    return s_choices[0];
}

} // namespace

Faults DrawFaults(Random &random)
{
    Faults faults;
    const std::uint64_t count = 1 + Below(random, 3);
    for (std::uint64_t i = 0; i < count; ++i) {
        const Choice &choice = Choose(random);
        const auto span = static_cast<std::uint64_t>(choice.most - choice.least + 1);
        Vcam::FaultRule rule;
        rule.action = choice.action;
        rule.amount = choice.least + static_cast<std::int64_t>(Below(random, span));
        if (rule.action == FaultAction::ShiftBlockId && rule.amount == 0) {
            rule.amount = 1;
        }
        const bool isControl = rule.action >= FaultAction::DelayAck && rule.action <= FaultAction::StallControl;
        rule.moment = isControl ? FaultMoment::Command : FaultMoment::Frame;
        switch (Below(random, 3)) {
        case 0:
            rule.at = Below(random, isControl ? 10 : 200);
            break;
        case 1:
            rule.every = 2 + Below(random, 50);
            break;
        default:
            rule.from = Below(random, 100);
            rule.probability = static_cast<double>(1 + Below(random, 200)) / 1000;
            break;
        }
        rule.times = isControl ? 3 : static_cast<std::uint32_t>(1 + Below(random, 20));
        faults.unplugs = faults.unplugs || rule.action == FaultAction::Unplug;
        faults.shiftsIds = faults.shiftsIds || rule.action == FaultAction::ShiftBlockId;
        faults.losesStep =
            faults.losesStep || (rule.action >= FaultAction::LoseLeader && rule.action <= FaultAction::StallStream);
        faults.disturbsControl = faults.disturbsControl || isControl;
        faults.rules.push_back(rule);
    }
    return faults;
}

std::string Faults::Text() const
{
    std::string text;
    for (const Vcam::FaultRule &rule : rules) {
        char when[64];
        if (rule.at) {
            std::snprintf(when, sizeof when, "at %s %llu", std::string(NameOf(rule.moment)).c_str(),
                          static_cast<unsigned long long>(*rule.at));
        } else {
            std::snprintf(when, sizeof when, "every %llu %ss, probability %.3f",
                          static_cast<unsigned long long>(rule.every), std::string(NameOf(rule.moment)).c_str(),
                          rule.probability);
        }
        text += text.empty() ? "" : "; ";
        text += std::string(NameOf(rule.action)) + ' ' + std::to_string(rule.amount) + ' ' + when + ", " +
                std::to_string(rule.times) + " times";
    }
    return text;
}

} // namespace Orvi::Soak
