#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"
#include "siblings/AdvancedMorphology/Processor/IterativePropagationStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(IterativeExtremumPropagation2dImgLvl2)

processor::RetrievalResult IterativeExtremumPropagation2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    return spreadWithinStrips<IterativeExtremumPropagation2dImgLvl3>(priority, provider);
}

}}}  // namespace orvik::imaproc::advmorpho
