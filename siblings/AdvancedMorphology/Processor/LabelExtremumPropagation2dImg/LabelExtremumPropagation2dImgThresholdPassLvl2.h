#pragma once

#include "siblings/AdvancedMorphology/Processor/LabelPropagation.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: 1 where a plane is not 0, else 0, also for NaN.
class ORVIK_API LabelExtremumPropagation2dImgThresholdPassLvl2
    : public LabelThresholdPassLvl2<LabelExtremumPropagation2dImgThresholdPassLvl2, OfPlanes>
{
    ORVIK_PROCESSOR(LabelExtremumPropagation2dImgThresholdPassLvl2, 4)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::advmorpho
