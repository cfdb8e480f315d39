#pragma once

#include "siblings/AdvancedMorphology/Processor/IterativePropagation.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: each sample of a plane that is not 0 takes the largest value (or the smallest, for minima) that can be reached
/// from it through samples that are not 0. Input and result may be one image; else they are of one size and type.
/// Time linear in the plane. Maxima of eight neighbours in a plane of unsigned bytes none of which is above 2 need no
/// memory beyond a line or two per thread and the samples that are waiting their turn; all else needs an entry per run of
/// samples.
class ORVIK_API IterativeExtremumPropagation2dImgLvl2
    : public IterativePropagationLvl2<IterativeExtremumPropagation2dImgLvl2, OfPlanes>
{
    ORVIK_PROCESSOR(IterativeExtremumPropagation2dImgLvl2, 2)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::advmorpho
