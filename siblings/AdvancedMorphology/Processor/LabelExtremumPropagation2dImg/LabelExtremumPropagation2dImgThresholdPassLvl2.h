#pragma once

#include "siblings/AdvancedMorphology/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: 1 where a plane is not 0, else 0, also for NaN.
class ORVIK_API LabelExtremumPropagation2dImgThresholdPassLvl2
    : public processor::Processor<LabelExtremumPropagation2dImgThresholdPassLvl2, processor::BaseAsync1Processor,
                                  attr::InSubImg2d, attr::OutBinImg>
{
    ORVIK_PROCESSOR(LabelExtremumPropagation2dImgThresholdPassLvl2, 4)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::advmorpho
