#pragma once
// The udev rule that lets people open USB3 Vision cameras: whether udev reads one, and how to make it do so.

#include "Machine.h"

#include <string>

namespace Orvi::Tool {

struct UdevRule {
    std::string path;    ///< of the file that udev reads, empty when there is none
    std::string mistake; ///< why it does not let anybody in
    bool IsThere() const { return !path.empty(); }
    bool Works() const { return IsThere() && mistake.empty(); }
};

/// The first file with a rule for USB3 Vision that works, else 70-u3v.rules, else none.
UdevRule FindUdevRule(const Machine &machine);

/// The commands that install the rule of an SDK.
std::string InstallRuleCommand(const std::string &sdk);
/// The command that makes udev look again at what is plugged.
extern const std::string reloadRulesCommand;

} // namespace Orvi::Tool
