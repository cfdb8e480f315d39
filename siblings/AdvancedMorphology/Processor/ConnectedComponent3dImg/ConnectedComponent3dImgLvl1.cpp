#include "siblings/AdvancedMorphology/Processor/ConnectedComponent3dImg/ConnectedComponent3dImgLvl1.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponent3dImg/ConnectedComponent3dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponentStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(ConnectedComponent3dImgLvl1)

processor::RetrievalResult ConnectedComponent3dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return findComponents<ConnectedComponent3dImgLvl2>(priority, provider);
}

}}}  // namespace orvik::imaproc::advmorpho
