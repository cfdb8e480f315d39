#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"

#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractRadiusFromHoughImgLvl1)

processor::RulePtr ExtractRadiusFromHoughImgLvl1::createRule() const
{
    // The real part with itself: parts that differ are left to the strips, which do not fit then.
    return matchSizeAndType(attribute<InSingleGreyComplexRealImg2d>(), attribute<InSingleGreyComplexRealImg2d>());
}

void ExtractRadiusFromHoughImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutHoughCircles2dPpties>(initializers, newRecord(attribute<OutHoughCircles2dPpties>()));
}

processor::RetrievalResult ExtractRadiusFromHoughImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                           processor::ProviderPtr& provider)
{
    return dispatch<ExtractRadiusFromHoughImgLvl3>(
        priority, provider, stripsWithMargins<InComplexRealKnlYStrip2d>(value<InSingleGreyComplexRealImg2d>(), 0, 0),
        stripsWithMargins<InComplexImKnlYStrip2d>(value<InSingleGreyComplexImImg2d>(), 0, 0),
        recordsOfEach<InHoughCircles2dCenters, Pixel2d::Y>(value<InHoughCircles2dCenters>(), m_centers),
        same(attribute<InHoughCirclesRadiusRange>()), resultOfEach<OutHoughCircles2dPpties>(m_results));
}

processor::StageResult ExtractRadiusFromHoughImgLvl1::postProcess()
{
    m_centers.join(m_results, value<InHoughCircles2dCenters>()->size(), *value<OutHoughCircles2dPpties>());
    return processor::eSRT_Done;
}

void ExtractRadiusFromHoughImgLvl1::clearIntermediateData() noexcept
{
    m_results->clear();
    m_centers.clear();
}

typedef FunctionForms<ExtractRadiusFromHoughImgLvl1, OutHoughCircles2dPpties> Forms;

ORVIK_PROCEDURE(extractRadiusFromHoughImg2d,
                (const ConstImagePtr&, inRealImg)(const ConstImagePtr&, inImImg)(const ConstPtr<Pixels2d>&, centers)(
                    const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(const Ptr<HoughCircles2dPpties>&, outPpties))
{
    processor.set<InSingleGreyComplexRealImg2d>(inRealImg);
    processor.set<InSingleGreyComplexImImg2d>(inImImg);
    processor.set<InHoughCircles2dCenters>(centers);
    processor.set<InHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutHoughCircles2dPpties>(outPpties);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
