#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 2: one volume, by strips of slices. An output that is unset is not computed.
class ORVIK_API GaussianGradient3dImgLvl2
    : public processor::Processor<GaussianGradient3dImgLvl2, processor::BaseAsync1Processor, attr::InSubImg3d,
                                  attr::InStdDevX, attr::InStdDevY, attr::InStdDevZ, attr::InGaussianCoverage,
                                  attr::OutOptSubGradXImg3d, attr::OutOptSubGradYImg3d, attr::OutOptSubGradZImg3d>
{
    ORVIK_PROCESSOR(GaussianGradient3dImgLvl2, 6)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::filter
