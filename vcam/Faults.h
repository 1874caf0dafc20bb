#pragma once
// What goes wrong with a virtual camera, and when: a list of rules, each of a moment and an action. Plain data, as a
// description file or a test writes it; the same script with the same seed does the same to the same commands and
// frames.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

/// What a rule counts. Its number decides with FaultRule::at, every, from and probability whether the rule acts.
enum class FaultMoment : std::uint8_t {
    Frame,   ///< a frame begins; the number is its block id, from 0 with each stream enable
    Command, ///< a control command arrives, at `address` when one is given; from 1 since power-up
    Write,   ///< `value` has been written to `address`; from 1 since power-up
    Time,    ///< milliseconds since power-up
};

/// What a rule does. Actions on a frame or on an acknowledge whose moment is another one act on the next frame or the
/// next command.
enum class FaultAction : std::uint8_t {
    // on a frame
    LoseFrame,      ///< nothing is sent: the block id is missing, and the camera counts it as lost
    Truncate,       ///< the payload is `amount` bytes long, and the trailer says so: valid size and whole lines
    CutPayload,     ///< the payload ends after `amount` bytes, and the trailer claims all of it
    TrailerStatus,  ///< the trailer's status is `amount`: 0xA100 data discarded, 0xA101 data overrun, any other
    LoseLeader,     ///< no leader is sent
    LoseTrailer,    ///< no trailer is sent
    BadLeader,      ///< the leader's prefix is wrong
    BadTrailer,     ///< the trailer's prefix is wrong
    ShiftBlockId,   ///< `amount` is added to the block id in leader and trailer
    ShiftTrailerId, ///< `amount` is added to the block id in the trailer alone
    StallStream,    ///< the stream endpoint halts: after `amount` bytes of the payload, 0: before the leader
    // on an acknowledge
    DelayAck,       ///< it comes `amount` ms late
    PendingAck,     ///< a PENDING_ACK that announces `amount` ms comes first
    LoseAck,        ///< the command is carried out, the acknowledge is not sent; a resend gets it
    ShiftRequestId, ///< `amount` is added to its request id
    ErrorAck,       ///< the command is not carried out, and the status is `amount`: 0x8006, 0x8007 ...
    StallControl,   ///< `amount` 0: both control endpoints halt and the command is not carried out; 1: it is, and the
                    ///< IN endpoint halts in the place of the acknowledge
    // on the camera
    StallEvents, ///< the event endpoint halts
    EventBurst,  ///< `amount` Test events at once
    BadEvents,   ///< the next `amount` event packets have a wrong prefix
    Poke,        ///< the register at `target` becomes `amount`, read-only or not, as if the device had written it
    Trigger,     ///< as by a software trigger, whatever the trigger source
    Unplug,      ///< the plug is pulled, and put in again after `amount` ms; 0: it stays out
    Count,
};

struct FaultRule {
    FaultMoment moment = FaultMoment::Frame;
    // Which numbers of the moment: the one of `at`; or else all multiples of `every` that are not below `from`.
    std::optional<std::uint64_t> at{};
    std::uint64_t every = 1; ///< 10: 10, 20, 30 ...; 1: 0, 1, 2 ...
    std::uint64_t from = 0;
    double probability = 1;  ///< 0 to 1, drawn from the script's seed, the rule's place and the number
    std::uint32_t times = 0; ///< acts so often at most, power-ups included; 0: no limit
    // Of commands and writes. A command is at an address when its one read or write touches that quadlet.
    std::optional<std::uint64_t> address{};
    std::uint32_t value = 0; ///< a write counts when it equals this in the bits of the mask
    std::uint32_t mask = 0xFFFFFFFF;

    FaultAction action = FaultAction::LoseFrame;
    std::int64_t amount = 0; ///< as the action says
    std::uint64_t target = 0;

    bool operator==(const FaultRule &) const = default;
};

struct FaultScript {
    std::uint64_t seed = 0;
    std::vector<FaultRule> rules;
};

/// What moments and actions are called in files, in the order of their values: "frame", "lose-frame".
std::optional<FaultMoment> FindFaultMoment(std::string_view name);
std::optional<FaultAction> FindFaultAction(std::string_view name);
std::string_view NameOf(FaultMoment moment);
std::string_view NameOf(FaultAction action);
/// All names, for messages: "frame, command, write, time".
std::string FaultMomentNames();
std::string FaultActionNames();

/// What is wrong with a rule: the member (as the struct calls it) and the reason. Empty when nothing is.
struct FaultProblem {
    std::string_view member;
    std::string reason;
    explicit operator bool() const { return !member.empty(); }
};
FaultProblem ProblemOf(const FaultRule &rule);

} // namespace Orvi::Vcam
