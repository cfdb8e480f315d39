#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponentStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(ConnectedComponent2dImgLvl1)

processor::RetrievalResult ConnectedComponent2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return findComponents<ConnectedComponent2dImgLvl2>(priority, provider);
}

}}}  // namespace orvik::imaproc::advmorpho
