#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: each pixel of a plane that is not 0 takes the largest value (or the smallest, for minima) that can be reached
/// from it through pixels that are not 0. Input and result may be one image; else they are of one size and type.
/// Time linear in the plane. Maxima of eight neighbours in a plane of unsigned bytes none of which is above 2 need no
/// memory beyond a line per thread and the pixels that are waiting their turn; all else needs an entry per run of pixels.
class ORVIK_API IterativeExtremumPropagation2dImgLvl2
    : public processor::Processor<IterativeExtremumPropagation2dImgLvl2, processor::BaseAsync1Processor, attr::InSubImg2d,
                                  attr::InNeighborhood2d, attr::InLocalExtremumType, attr::OutImg>
{
    ORVIK_PROCESSOR(IterativeExtremumPropagation2dImgLvl2, 2)

    using BaseAsync1Processor::retrieveProvider;
    processor::StageResult preProcess() override;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    bool spreadsByStrips() const;

    processor::ResultsOfStrips<attr::StatsResult> m_strips;
};

}}}  // namespace orvik::imaproc::advmorpho
