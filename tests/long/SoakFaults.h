#pragma once
// Random faults for one round of streaming.

#include "vcam/Faults.h"

#include <random>

namespace Orvi::Soak {

using Random = std::mt19937_64;

/// From 0 to below the limit.
inline std::uint64_t Below(Random &random, std::uint64_t limit) { return random() % limit; }

struct Faults {
    std::vector<Vcam::FaultRule> rules;
    bool unplugs = false;         ///< the camera may be pulled out
    bool shiftsIds = false;       ///< block ids may be wrong
    bool losesStep = false;       ///< the host throws away what it cannot assign, and the camera cannot know of it
    bool disturbsControl = false; ///< commands may fail

    std::string Text() const;
};
Faults DrawFaults(Random &random);

} // namespace Orvi::Soak
