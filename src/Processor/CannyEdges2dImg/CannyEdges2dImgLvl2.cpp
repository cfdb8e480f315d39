#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl2.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(CannyEdges2dImgLvl2)

processor::RulePtr CannyEdges2dImgLvl2::createRule() const
{
    return matchSizeAndType(attribute<InSubGxImg2d>(), attribute<InSubGyImg2d>())
           && matchSize(attribute<InSubGxImg2d>(), attribute<OutBinImg>());
}

processor::RetrievalResult CannyEdges2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                 processor::ProviderPtr& provider)
{
    return dispatch<CannyEdges2dImgLvl3>(priority, provider, strips<OutYStrip2d>(value<OutBinImg>()),
                                         same(attribute<InCannyThresholds>()),
                                         stripsWithMargins<InGyKnlYStrip2d>(value<InSubGyImg2d>(), 1, 1),
                                         stripsWithMargins<InGxKnlYStrip2d>(value<InSubGxImg2d>(), 1, 1));
}

}}}  // namespace orvik::imaproc::fd
