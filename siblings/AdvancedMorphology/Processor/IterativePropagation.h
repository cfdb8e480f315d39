#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/PartsOfImages.h"

#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2 of planes and of volumes. Derived classes give their stage by `spreadWithinStrips`.
template<class D, class Part>
class IterativePropagationLvl2
    : public processor::Processor<D, processor::BaseAsync1Processor, typename Part::InSubImg, typename Part::InNeighborhood,
                                  attr::InLocalExtremumType, attr::OutImg>
{
public:
    processor::StageResult preProcess() override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

protected:
    template<class Lvl3>
    processor::RetrievalResult spreadWithinStrips(const core::BasePriority& priority, processor::ProviderPtr& provider);

    processor::RulePtr createRule() const;

private:
    bool spreadsByStrips() const;

    processor::ResultsOfStrips<attr::StatsResult> m_strips;
};

}}}  // namespace orvik::imaproc::advmorpho
