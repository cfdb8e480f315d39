#pragma once

// Figures as ratios within one run, so that they mean the same on every machine.

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orvik::bench {

/// Keeps the shortest time of each benchmark: what is left when the rest of the machine did not interfere.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    /// Seconds per iteration; 0 for a benchmark that did not run.
    double time(const std::string& name) const;

private:
    std::map<std::string, double> m_shortest;
};

/// A benchmark of `run` with that many threads, by the time that it takes.
void registerRun(const std::string& name, unsigned int nbThreads, const std::function<void()>& run);

/// One line of the table: how many times `longer` takes as long as `shorter`.
struct Ratio
{
    std::string what;
    std::string longer, shorter;
    std::string aim;
};

/// Runs all registered benchmarks, several times in random order, then prints the ratios of those that ran.
int runBenchmarks(int argc, char** argv, const std::vector<Ratio>& ratios);

/// Bytes that are allocated now, and the most there were since `restart`, by every library of this process.
struct MemoryMeter
{
    static void restart();
    static long peakAboveStart();
};

}  // namespace orvik::bench
