#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 2: one plane, by strips. An output that is unset is not computed.
class ORVIK_API GaussianGradient2dImgLvl2
    : public processor::Processor<GaussianGradient2dImgLvl2, processor::BaseAsync1Processor, attr::InSubImg2d,
                                  attr::InStdDevX, attr::InStdDevY, attr::InGaussianCoverage, attr::OutOptSubGradXImg2d,
                                  attr::OutOptSubGradYImg2d>
{
    ORVIK_PROCESSOR(GaussianGradient2dImgLvl2, 1)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::filter
