#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. Its strips vote into one accumulator, which may have more rows than there are angles: they stay 0.
class ORVIK_API HoughLinesGradient2dImgLvl2
    : public processor::Processor<HoughLinesGradient2dImgLvl2, processor::BaseAsync2Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InOptHoughLinesGradientImgParams,
                                  attr::InOptHoughLinesOrientationTolerance, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughLinesGradient2dImgLvl2, 59)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
