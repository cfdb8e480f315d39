#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl3.h"
#include "siblings/AdvancedMorphology/Processor/IterativePropagationStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(IterativeExtremumPropagation3dImgLvl2)

processor::RetrievalResult IterativeExtremumPropagation3dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    return spreadWithinStrips<IterativeExtremumPropagation3dImgLvl3>(priority, provider);
}

}}}  // namespace orvik::imaproc::advmorpho
