#pragma once

#include "siblings/AdvancedMorphology/Processor/LabelPropagation.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: 1 where a volume is not 0, else 0, also for NaN.
class ORVIK_API LabelExtremumPropagation3dImgThresholdPassLvl2
    : public LabelThresholdPassLvl2<LabelExtremumPropagation3dImgThresholdPassLvl2, OfVolumes>
{
    ORVIK_PROCESSOR(LabelExtremumPropagation3dImgThresholdPassLvl2, 10)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::advmorpho
