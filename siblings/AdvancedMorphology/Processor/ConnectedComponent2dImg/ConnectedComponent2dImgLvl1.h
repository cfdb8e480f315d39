#pragma once

#include "siblings/AdvancedMorphology/Processor/ConnectedComponents.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 1: labels what hangs together in each plane: from 1 in raster order of the components' first samples, running
/// on over all planes. What is 0 stays 0. More components than the label image can name end the run with a message,
/// before a label is written. A label image that the caller does not give is made with 32 bits.
class ORVIK_API ConnectedComponent2dImgLvl1 : public ConnectedComponentLvl1<ConnectedComponent2dImgLvl1, OfPlanes>
{
    ORVIK_PROCESSOR(ConnectedComponent2dImgLvl1, 0)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::advmorpho
