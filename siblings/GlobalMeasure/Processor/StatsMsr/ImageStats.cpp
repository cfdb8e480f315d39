#include "siblings/GlobalMeasure/Processor/StatsMsr/ImageStats.h"

#include "siblings/GlobalMeasure/ImageSamples.h"

#include "frame/attr/Records.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

namespace {

constexpr unsigned long g_nbLanes = 32;
template<class Value>
using Lanes = std::array<Value, g_nbLanes>;

/// f(f(f(start, v), v'), v'') and so on over the samples of a line, in lanes that are left to join. Neighbours go to lanes
/// of their own, which the compiler works on at once without changing the order of any sum.
template<class Value, class Sample, class F>
Lanes<Value> fold(const Sample* line, unsigned long sizeX, Value start, F&& f)
{
    Lanes<Value> lanes;
    lanes.fill(start);
    unsigned long x = 0;
    for (; x + g_nbLanes <= sizeX; x += g_nbLanes)
        for (unsigned long lane = 0; lane < g_nbLanes; ++lane)
            lanes[lane] = f(lanes[lane], line[x + lane]);
    for (unsigned long lane = 0; x + lane < sizeX; ++lane)
        lanes[lane] = f(lanes[lane], line[x + lane]);
    return lanes;
}

double sumOf(Lanes<double> lanes)
{
    for (unsigned long n = g_nbLanes / 2; n > 0; n /= 2)
        for (unsigned long lane = 0; lane < n; ++lane)
            lanes[lane] += lanes[lane + n];
    return lanes[0];
}

template<class Sample>
void measure(const image::BaseImage& image, StatsResult& stats)
{
    typedef std::numeric_limits<Sample> Limits;
    Sample min = Limits::has_infinity ? Limits::infinity() : Limits::max();
    Sample max = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    const unsigned long sizeX = image.getSizeX();

    double nbSamples = 0.0, sum = 0.0;
    forEachSampleLine<Sample>(image, [&](const Sample* line) {  // NaN is below nothing and above nothing
        const auto mins = fold(line, sizeX, min, [](Sample a, Sample v) { return v < a ? v : a; });
        const auto maxs = fold(line, sizeX, max, [](Sample a, Sample v) { return v > a ? v : a; });
        min = *std::min_element(mins.begin(), mins.end());
        max = *std::max_element(maxs.begin(), maxs.end());
        sum += sumOf(fold(line, sizeX, 0.0, [](double a, double v) { return a + (v == v ? v : 0.0); }));
        nbSamples += sumOf(fold(line, sizeX, 0.0, [](double a, double v) { return a + (v == v ? 1.0 : 0.0); }));
    });
    if (nbSamples == 0.0) {
        stats = StatsResult();
        return;
    }

    const double mean = sum / nbSamples;
    double squares = 0.0;
    forEachSampleLine<Sample>(image, [&](const Sample* line) {
        squares += sumOf(fold(line, sizeX, 0.0,
                              [mean](double a, double v) { return a + (v == v ? (v - mean) * (v - mean) : 0.0); }));
    });
    stats.set<StatsResult::NbSamples>(static_cast<unsigned long>(nbSamples));
    stats.set<StatsResult::Mean>(mean);
    stats.set<StatsResult::StdDev>(std::sqrt(squares / nbSamples));
    stats.set<StatsResult::Min>(static_cast<double>(min));
    stats.set<StatsResult::Max>(static_cast<double>(max));
    stats.set<StatsResult::Sum>(sum);
}

}  // namespace

void measureStats(const image::BaseImage& image, StatsResult& stats)
{
    image::withSampleType(image::toDataType(image.getBufferType()),
                          [&](auto zero) { measure<decltype(zero)>(image, stats); });
}

BoolResult measureStatsOfPlane(const image::BaseImage& plane, const std::string& attribute, StatsResult& stats)
{
    const BoolResult result = checkOnePlane(plane, attribute);
    if (result)
        measureStats(plane, stats);
    return result;
}

}}}  // namespace orvik::imaproc::glbmsr
