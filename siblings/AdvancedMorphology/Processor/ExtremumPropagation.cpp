#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"

#include "siblings/AdvancedMorphology/Processor/ComponentRuns.h"
#include "siblings/AdvancedMorphology/Processor/WeakSpreader.h"

#include "frame/attr/Records.h"

#include <algorithm>
#include <limits>

namespace orvik { namespace imaproc { namespace advmorpho {

namespace {

template<class Sample>
void spreadExtrema(image::BaseImage& image, const ComponentRuns& runs, bool minima)
{
    std::vector<Sample> extrema(runs.getNbComponents());
    std::vector<bool> seen(runs.getNbComponents(), false);
    runs.forEachRun([&](unsigned long y, unsigned long z, const Run& run) {
        const Sample* const line = static_cast<const Sample*>(image.getLine(y, z));
        Sample& extremum = extrema[run.component];
        if (!seen[run.component])
            extremum = line[run.start];
        seen[run.component] = true;
        for (unsigned long x = run.start; x < run.end; ++x)
            if (minima ? line[x] < extremum : line[x] > extremum)
                extremum = line[x];
    });
    runs.forEachRun([&](unsigned long y, unsigned long z, const Run& run) {
        Sample* const line = static_cast<Sample*>(image.accessLine(y, z));
        std::fill(line + run.start, line + run.end, extrema[run.component]);
    });
}

/// Reads line (y, z) into whole numbers or doubles, whatever its type.
template<class T>
void readLine(const image::BaseImage& image, unsigned long y, unsigned long z, std::vector<T>& line)
{
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        const Sample* const samples = static_cast<const Sample*>(image.getLine(y, z));
        for (unsigned long x = 0; x < line.size(); ++x)
            line[x] = static_cast<T>(samples[x]);
    });
}

}  // namespace

void spreadExtrema(image::BaseImage& image, const Neighborhood& neighborhood, attr::eLocalExtremumType type)
{
    ComponentRuns runs;
    runs.find(image, neighborhood);
    image::withSampleType(image::toDataType(image.getBufferType()),
                          [&](auto zero) { spreadExtrema<decltype(zero)>(image, runs, isMinima(type)); });
}

bool spreadAcrossStrips(image::BaseImage& image, const Neighborhood& neighborhood, const StatsOfStrips& strips)
{
    for (const auto& strip : strips)
        if (strip.second->get<attr::StatsResult::Max>() > 2.0)
            return false;
    WeakSpreader spreader(linesOf(image), neighborhood);
    for (const auto& strip : strips)
        spreader.spreadAcross(strip.first.getStart());
    return true;
}

BoolResult spreadExtremaOfLabels(const image::BaseImage& values, const image::BaseImage& labels, unsigned long nbLabels,
                                 attr::eLocalExtremumType type, image::BaseImage& out)
{
    const unsigned long sizeX = out.getSizeX(), sizeY = out.getSizeY(), sizeZ = out.getSizeZ();
    const bool minima = isMinima(type);

    // Doubles hold the values of every sample type exactly.
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> extrema(nbLabels + 1, minima ? infinity : -infinity);
    std::vector<double> valueLine(sizeX);
    std::vector<unsigned long> labelLine(sizeX);
    for (unsigned long z = 0; z < sizeZ; ++z)
        for (unsigned long y = 0; y < sizeY; ++y) {
            readLine(values, y, z, valueLine);
            readLine(labels, y, z, labelLine);
            for (unsigned long x = 0; x < sizeX; ++x) {
                if (labelLine[x] > nbLabels)
                    return failure("label " + std::to_string(labelLine[x]) + " is above the number of labels, "
                                   + std::to_string(nbLabels));
                double& extremum = extrema[labelLine[x]];
                if (minima ? valueLine[x] < extremum : valueLine[x] > extremum)
                    extremum = valueLine[x];
            }
        }
    extrema[0] = 0.0;
    for (unsigned long z = 0; z < sizeZ; ++z)
        for (unsigned long y = 0; y < sizeY; ++y) {
            readLine(labels, y, z, labelLine);
            image::withSampleType(image::toDataType(out.getBufferType()), [&](auto zero) {
                typedef decltype(zero) Sample;
                Sample* const line = static_cast<Sample*>(out.accessLine(y, z));
                for (unsigned long x = 0; x < sizeX; ++x)
                    line[x] = static_cast<Sample>(extrema[labelLine[x]]);
            });
        }
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho
