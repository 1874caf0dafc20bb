#include "Claims.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <vector>

namespace Orvi::Bench {

namespace {

std::vector<Claim> &Claims()
{
    static std::vector<Claim> claims;
    return claims;
}

/// Prints as usual and keeps the medians.
class KeepingReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.error_occurred) {
                failed_ = true;
                continue;
            }
            if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median")
                continue;
            const std::string name = run.run_name.function_name;
            medians_[name] = run.GetAdjustedCPUTime();
            for (const auto &[counter, value] : run.counters)
                medians_[name + "/" + counter] = value;
        }
    }

    const std::map<std::string, double> &Medians() const { return medians_; }
    bool HasFailed() const { return failed_; }

  private:
    std::map<std::string, double> medians_;
    bool failed_ = false;
};

KeepingReporter s_reporter;

bool IsKept(const Claim &claim, double value)
{
    switch (claim.direction) {
    case Claim::Is::AtMost:
        return value <= claim.limit;
    case Claim::Is::AtLeast:
        return value >= claim.limit;
    case Claim::Is::Shown:
        break;
    }
    return true;
}

/// Prints the table; the number of claims that were not kept.
int PrintTable()
{
    int broken = 0;
    std::printf("\n| what | measured | limit | kept |\n|---|---|---|---|\n");
    for (const Claim &claim : Claims()) {
        const double value = claim.measure();
        if (std::isnan(value)) // a filter left its benchmarks out
            continue;
        if (claim.direction == Claim::Is::Shown) {
            std::printf("| %s | %.2f%s | | |\n", claim.text.c_str(), value, claim.unit.c_str());
            continue;
        }
        const bool kept = IsKept(claim, value);
        broken += kept ? 0 : 1;
        std::printf("| %s | %.2f%s | %s %.2f%s | %s |\n", claim.text.c_str(), value, claim.unit.c_str(),
                    claim.direction == Claim::Is::AtMost ? "at most" : "at least", claim.limit, claim.unit.c_str(),
                    kept ? "yes" : "NO");
    }
    return broken;
}

} // namespace

double Median(const std::string &benchmark, const std::string &counter)
{
    const auto found = s_reporter.Medians().find(counter.empty() ? benchmark : benchmark + "/" + counter);
    return found != s_reporter.Medians().end() ? found->second : std::numeric_limits<double>::quiet_NaN();
}

bool Add(Claim claim)
{
    Claims().push_back(std::move(claim));
    return true;
}

} // namespace Orvi::Bench

int main(int argc, char **argv)
{
    // Benchmarks that are compared take turns, repetition by repetition. What needs finer turns than these takes them
    // itself (Turns.h). Whoever gives the option himself has the last word.
    std::vector<char *> arguments(argv, argv + argc);
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleaving);
    argc = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    argv = arguments.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    if (benchmark::RunSpecifiedBenchmarks(&Orvi::Bench::s_reporter) == 0 || Orvi::Bench::s_reporter.HasFailed())
        return 2;
    return Orvi::Bench::PrintTable() == 0 ? 0 : 1;
}
