#pragma once
// What the benchmarks are to show: each claim compares figures of the same run with each other, never with a constant
// of some machine.

#include <functional>
#include <string>

namespace Orvi::Bench {

/// The median processor time of a benchmark of this run in its own unit; a counter of it when one is named. Not a
/// number when the benchmark did not run.
double Median(const std::string &benchmark, const std::string &counter = {});

/// A row of the table that is printed at the end.
struct Claim {
    std::string text;                ///< what is compared with what
    std::function<double()> measure; ///< evaluated after the run
    std::string unit;
    enum class Is { AtMost, AtLeast, Shown } direction; ///< Shown: a figure without a limit
    double limit;
};

/// Registers a claim; call it from a static initialiser of the file that holds its benchmarks.
bool Add(Claim claim);

} // namespace Orvi::Bench
