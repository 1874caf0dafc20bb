#pragma once
// What a check of orvicam doctor says.

#include <string>
#include <vector>

namespace Orvi::Tool {

enum class Verdict { Ok, Warn, Fail };

struct Finding {
    Verdict verdict;
    std::string check;    ///< what was looked at, e.g. "udev rule"
    std::string text;     ///< what was found
    std::string remedy{}; ///< what to do, as a command where one does it; empty when all is well
};

using Findings = std::vector<Finding>;

} // namespace Orvi::Tool
