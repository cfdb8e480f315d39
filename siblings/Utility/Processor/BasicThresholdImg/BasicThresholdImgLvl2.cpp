#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl2.h"

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace util {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(BasicThresholdImgLvl2)

processor::RulePtr BasicThresholdImgLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<OutBinImg>());
}

processor::RetrievalResult BasicThresholdImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    return dispatch<BasicThresholdImgLvl3>(priority, provider, strips<InYStrip2d>(value<InSubImg2d>()),
                                           same(attribute<InThresholdMin>()), same(attribute<InThresholdMax>()),
                                           strips<OutYStrip2d>(value<OutBinImg>()));
}

}}}  // namespace orvik::imaproc::util
