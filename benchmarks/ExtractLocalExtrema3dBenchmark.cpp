// Local extrema of a smooth random volume at several distances.

#include "Ratios.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"
#include "frame/image/BaseImage.h"

#include <cstdio>
#include <random>

using namespace orvik;
using imaproc::ImagePtr;

namespace {

const unsigned long g_size = 256;
const unsigned int g_distances[] = {1, 3, 10};

/// Noise whose lines are smoothed along all three axes, with a maximum about every thousandth voxel.
ImagePtr smoothNoise()
{
    const ImagePtr volume = image::createImage(image::eIBT_Real32, {g_size, g_size, g_size});
    const auto at = [&](unsigned long x, unsigned long y, unsigned long z) -> float& {
        return static_cast<float*>(volume->accessLine(y, z))[x];
    };
    std::mt19937 random(1);
    for (unsigned long i = 0; i < g_size * g_size * g_size; ++i)
        at(i % g_size, i / g_size % g_size, i / g_size / g_size) = static_cast<float>(random() >> 8) / 16777216.0f;
    const float share = 0.3f;  // of the voxel itself in running means, to and fro
    const auto smooth = [&](const auto& voxel) {
        for (unsigned long i = 1; i < g_size; ++i)
            voxel(i) = share * voxel(i) + (1 - share) * voxel(i - 1);
        for (unsigned long i = g_size - 1; i-- > 0;)
            voxel(i) = share * voxel(i) + (1 - share) * voxel(i + 1);
    };
    for (unsigned long a = 0; a < g_size; ++a)
        for (unsigned long b = 0; b < g_size; ++b) {
            smooth([&](unsigned long i) -> float& { return at(i, a, b); });
            smooth([&](unsigned long i) -> float& { return at(a, i, b); });
            smooth([&](unsigned long i) -> float& { return at(a, b, i); });
        }
    return volume;
}

void registerCase(const std::string& name, const ImagePtr& volume, unsigned int dist, unsigned long maxNb,
                  unsigned int nbThreads = 1)
{
    const auto config = imaproc::attr::createLocalExtremaConfig(maxNb);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     std::size_t nbListed = 0;
                                     for (auto _ : state)
                                         nbListed =
                                             imaproc::fd::extractLocalExtrema3d(volume, dist, dist, dist, config)->size();
                                     state.counters["listed"] = static_cast<double>(nbListed);
                                     core::setNbThreads(1);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr volume = smoothNoise();
    for (const unsigned int dist : g_distances)
        registerCase("extrema_" + std::to_string(dist), volume, dist, 1000000);
    registerCase("extrema_3_2_threads", volume, 3, 1000000, 2);
    const int status = bench::runBenchmarks(argc, argv,
                                            {{"distance 10 over distance 1", "extrema_10", "extrema_1", "below 1.6"},
                                             {"one thread over two", "extrema_3", "extrema_3_2_threads", "shown"}});
    for (const unsigned int dist : g_distances) {
        bench::MemoryMeter::restart();
        imaproc::fd::extractLocalExtrema3d(volume, dist, dist, dist, imaproc::attr::createLocalExtremaConfig(1e9, 10));
        std::printf("%8.2f  percent of the volume's size, memory at distance %u, nothing listed (below 3)\n",
                    100.0 * static_cast<double>(bench::MemoryMeter::peakAboveStart())
                        / static_cast<double>(4 * g_size * g_size * g_size),
                    dist);
    }
    return status;
}
