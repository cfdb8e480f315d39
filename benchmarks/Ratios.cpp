#include "Ratios.h"

#include "frame/core/Scheduler.h"

#include <cstdio>

namespace orvik::bench {

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    std::vector<Run> shown;
    for (const Run& run : runs)
        if (run.repetitions == 1 || run.aggregate_name == "median" || run.aggregate_name == "cv")
            shown.push_back(run);
    if (!shown.empty())
        ConsoleReporter::ReportRuns(shown);
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred || run.iterations == 0)
            continue;
        const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
        double& shortest = m_shortest[run.run_name.function_name];
        shortest = shortest == 0 || time < shortest ? time : shortest;
    }
}

double RatioReporter::time(const std::string& name) const
{
    const auto found = m_shortest.find(name);
    return found == m_shortest.end() ? 0.0 : found->second;
}

void registerRun(const std::string& name, unsigned int nbThreads, const std::function<void()>& run)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     for (auto _ : state)
                                         run();
                                     core::setNbThreads(1);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

int runBenchmarks(int argc, char** argv, const std::vector<Ratio>& ratios)
{
    std::vector<char*> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=25", time[] = "--benchmark_min_time=0.1",
         order[] = "--benchmark_enable_random_interleaving=true";
    char display[] = "--benchmark_display_aggregates_only=false";
    arguments.insert(arguments.begin() + 1, {repetitions, time, order, display});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nRatios of the shortest times\n");
    for (const Ratio& ratio : ratios) {
        const double longer = reporter.time(ratio.longer), shorter = reporter.time(ratio.shorter);
        if (longer > 0 && shorter > 0)
            std::printf("%8.2f  %s (%s)\n", longer / shorter, ratio.what.c_str(), ratio.aim.c_str());
        else
            std::printf("       -  %s: did not run here\n", ratio.what.c_str());
    }
    benchmark::Shutdown();
    return 0;
}

}  // namespace orvik::bench
