#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"

#include "siblings/AdvancedMorphology/Processor/LabelPropagationStages.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/imaproc/Stages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation2dImgThresholdPassLvl2)

processor::RetrievalResult LabelExtremumPropagation2dImgThresholdPassLvl2::retrieveProvider(
    const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    return dispatch<util::BasicThresholdImgLvl3>(priority, provider, strips<InYStrip2d>(value<InSubImg2d>()),
                                                 same<InThresholdMin>(0.0), same<InThresholdMax>(0.0), same<InOptOutside>(1),
                                                 strips<OutYStrip2d>(value<OutBinImg>()));
}

}}}  // namespace orvik::imaproc::advmorpho
