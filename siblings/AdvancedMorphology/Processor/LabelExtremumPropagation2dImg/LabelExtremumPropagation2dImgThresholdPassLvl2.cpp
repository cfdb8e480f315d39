#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation2dImgThresholdPassLvl2)

processor::RulePtr LabelExtremumPropagation2dImgThresholdPassLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<OutBinImg>())
           && imagesApart(*this, mayBeSame<InSubImg2d, OutBinImg>);
}

processor::RetrievalResult LabelExtremumPropagation2dImgThresholdPassLvl2::retrieveProvider(
    const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    return dispatch<util::BasicThresholdImgLvl3>(priority, provider, strips<InYStrip2d>(value<InSubImg2d>()),
                                                 same<InThresholdMin>(0.0), same<InThresholdMax>(0.0), same<InOptOutside>(1),
                                                 strips<OutYStrip2d>(value<OutBinImg>()));
}

}}}  // namespace orvik::imaproc::advmorpho
