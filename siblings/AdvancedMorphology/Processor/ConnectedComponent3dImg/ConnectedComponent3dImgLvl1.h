#pragma once

#include "siblings/AdvancedMorphology/Processor/ConnectedComponents.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 1: labels what hangs together in each volume: from 1 in raster order of the components' first samples, running
/// on over all volumes. What is 0 stays 0. More components than the label image can name end the run with a message,
/// before a label is written. A label image that the caller does not give is made with 32 bits.
class ORVIK_API ConnectedComponent3dImgLvl1 : public ConnectedComponentLvl1<ConnectedComponent3dImgLvl1, OfVolumes>
{
    ORVIK_PROCESSOR(ConnectedComponent3dImgLvl1, 6)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::advmorpho
