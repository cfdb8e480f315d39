#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/image/ImageLines.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(IterativeExtremumPropagation2dImgLvl2)

processor::RulePtr IterativeExtremumPropagation2dImgLvl2::createRule() const
{
    return matchSizeAndType(attribute<InSubImg2d>(), attribute<OutImg>())
           && imagesApart(*this, mayBeSame<InSubImg2d, OutImg>);
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
        image::copySamples(in, out);
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
    const Neighborhood neighborhood = neighborhoodOf(value<InNeighborhood2d>());
    if (!spreadsByStrips() || !spreadAcrossStrips(*value<OutImg>(), neighborhood, *m_strips))
        spreadExtrema(*value<OutImg>(), neighborhood, value<InLocalExtremumType>());
    return processor::eSRT_Done;
}

void IterativeExtremumPropagation2dImgLvl2::clearIntermediateData() noexcept
{
    m_strips->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
