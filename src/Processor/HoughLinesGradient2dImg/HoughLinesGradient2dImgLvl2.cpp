#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl2.h"

#include "Processor/HoughLines2dImg/HoughLinesOutImgSplit.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl3.h"
#include "Rule/HoughLines2dImgRuleUtils.h"
#include "Rule/RealImageRule.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

typedef HoughLinesOutImgSplit<HoughLinesGradient2dImgLvl3, OutRealImg> CustomHoughLinesGradient2dOutImgSplit;

ORVIK_DEFINE_PROCESSOR(HoughLinesGradient2dImgLvl2)

processor::RulePtr HoughLinesGradient2dImgLvl2::createRule() const
{
    const auto& gx = attribute<InSubGxImg2d>();
    const auto& params = attribute<InOptHoughLinesGradientImgParams>();
    const auto& out = attribute<OutRealImg>();
    return matchSizeAndType(gx, attribute<InSubGyImg2d>())
           && customImageProperty(out, houghLines2dCheckOutImgSzXEquals(gx, params))
           && houghLines2dCheckOutImgSzYGreaterOrEqual(out, params) && isReal(gx, out) && noInSitu(gx, out)
           && noInSitu(attribute<InSubGyImg2d>(), out);
}

processor::RetrievalResult HoughLinesGradient2dImgLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                              processor::ProviderPtr& provider)
{
    return delegate<util::EraseImgLvl2>(priority, provider, same<OutSubImg2d>(value<OutRealImg>()));
}

processor::RetrievalResult HoughLinesGradient2dImgLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                               processor::ProviderPtr& provider)
{
    return dispatch<HoughLinesGradient2dImgLvl3>(
        priority, provider, strips<InGxYStrip2d>(value<InSubGxImg2d>()), strips<InGyYStrip2d>(value<InSubGyImg2d>()),
        SharedAccumulator<CustomHoughLinesGradient2dOutImgSplit>{value<OutRealImg>()},
        sameIfSet(attribute<InOptHoughLinesGradientImgParams>()),
        sameIfSet(attribute<InOptHoughLinesOrientationTolerance>()));
}

}}}  // namespace orvik::imaproc::fd
