#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"
#include "siblings/AdvancedMorphology/Processor/PlaneRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>
#include <cstring>

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(IterativeExtremumPropagation2dImgLvl2)

namespace {

/// Any type, any values: the extremum of each connected component.
template<class Sample>
void spreadByComponents(image::BaseImage& plane, eNeighborhood2d neighborhood, bool minima)
{
    PlaneRuns runs;
    runs.find(plane, neighborhood);
    std::vector<Sample> extrema(runs.getNbComponents());
    std::vector<bool> seen(runs.getNbComponents(), false);
    for (const Run& run : runs.getRuns()) {
        const Sample* const line = static_cast<const Sample*>(plane.getLine(run.y));
        Sample& extremum = extrema[run.component];
        if (!seen[run.component])
            extremum = line[run.start];
        seen[run.component] = true;
        for (unsigned long x = run.start; x < run.end; ++x)
            if (minima ? line[x] < extremum : line[x] > extremum)
                extremum = line[x];
    }
    for (const Run& run : runs.getRuns()) {
        Sample* const line = static_cast<Sample*>(plane.accessLine(run.y));
        std::fill(line + run.start, line + run.end, extrema[run.component]);
    }
}

}  // namespace

processor::RulePtr IterativeExtremumPropagation2dImgLvl2::createRule() const
{
    return matchSizeAndType(attribute<InSubImg2d>(), attribute<OutImg>());
}

bool IterativeExtremumPropagation2dImgLvl2::spreadsByStrips() const
{
    return value<OutImg>()->hasBinary8BitsStorage() && !isMinima(value<InLocalExtremumType>())
           && value<InNeighborhood2d>() == eN2D_Eight;
}

processor::StageResult IterativeExtremumPropagation2dImgLvl2::preProcess()
{
    const image::BaseImage& in = *value<InSubImg2d>();
    image::BaseImage& out = *value<OutImg>();
    if (in.getLine(0) != out.getLine(0))
        for (unsigned long y = 0; y < out.getSizeY(); ++y)
            std::memcpy(out.accessLine(y), in.getLine(y),
                        out.getSizeX() * image::getImageBufferBaseSize(out.getBufferType()));
    return processor::eSRT_Done;
}

processor::RetrievalResult IterativeExtremumPropagation2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    if (!spreadsByStrips())
        return processor::eRRT_ProviderRetrieved;
    return dispatch<IterativeExtremumPropagation2dImgLvl3>(priority, provider, strips<OutYStrip2d>(value<OutImg>()),
                                                           resultOfEach<OutStatsResult>(m_strips));
}

processor::StageResult IterativeExtremumPropagation2dImgLvl2::postProcess()
{
    image::BaseImage& plane = *value<OutImg>();
    double largest = 0.0;
    for (const auto& strip : *m_strips)
        largest = std::max(largest, strip.second->get<StatsResult::Max>());
    if (!spreadsByStrips() || largest > 2.0) {
        image::withSampleType(image::toDataType(plane.getBufferType()), [&](auto zero) {
            typedef decltype(zero) Sample;
            spreadByComponents<Sample>(plane, value<InNeighborhood2d>(), isMinima(value<InLocalExtremumType>()));
        });
        return processor::eSRT_Done;
    }
    WeakSpreader spreader(plane.getSizeX(), 0, plane.getSizeY(), [&](unsigned long y) {
        return static_cast<unsigned char*>(plane.accessLine(y));
    });
    for (const auto& strip : *m_strips)
        spreader.spreadAcross(strip.first.getStart());
    return processor::eSRT_Done;
}

void IterativeExtremumPropagation2dImgLvl2::clearIntermediateData() noexcept
{
    m_strips->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
