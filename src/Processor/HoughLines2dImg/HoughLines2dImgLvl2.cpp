#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"
#include "Processor/HoughLines2dImg/HoughLinesOutImgSplit.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

typedef HoughLinesOutImgSplit<HoughLines2dImgLvl3, OutImg> CustomHoughLines2dOutImgSplit;

ORVIK_DEFINE_PROCESSOR(HoughLines2dImgLvl2)

processor::RulePtr HoughLines2dImgLvl2::createRule() const
{
    const boost::shared_ptr<InSubImg2d>& in = attribute<InSubImg2d>();
    const boost::shared_ptr<InOptHoughLinesImgParams>& params = attribute<InOptHoughLinesImgParams>();
    const boost::shared_ptr<OutImg>& out = attribute<OutImg>();
    return customImageProperty(out, houghLines2dCheckOutImgSzXEquals(in, params))
           && houghLines2dCheckOutImgSzYGreaterOrEqual(out, params)
           && customImageProperty(out, houghLines2dCheckOutImgBufferType(in, true)) && noInSitu(in, out);
}

processor::RetrievalResult HoughLines2dImgLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return delegate<util::EraseImgLvl2>(priority, provider, same<OutSubImg2d>(value<OutImg>()));
}

processor::RetrievalResult HoughLines2dImgLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    return dispatch<HoughLines2dImgLvl3>(priority, provider, strips<InYStrip2d>(value<InSubImg2d>()),
                                         SharedAccumulator<CustomHoughLines2dOutImgSplit>{value<OutImg>()},
                                         sameIfSet(attribute<InOptHoughLinesImgParams>()));
}

}}}  // namespace orvik::imaproc::fd
