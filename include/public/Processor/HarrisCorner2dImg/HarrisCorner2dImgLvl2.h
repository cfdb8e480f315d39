#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. The gradient goes to the first two working images, which the tensor overwrites, with its third
/// component in the third one; then the response, which may overwrite the first.
class ORVIK_API HarrisCorner2dImgLvl2
    : public processor::Processor<HarrisCorner2dImgLvl2, processor::BaseAsync3Processor, attr::InSubImg2d,
                                  attr::InGradStdDev, attr::InGaussianCoverage, attr::InCornerDetectionParams,
                                  attr::OutWk1Img, attr::OutWk2Img, attr::OutWk3Img, attr::OutImg>
{
    ORVIK_PROCESSOR(HarrisCorner2dImgLvl2, 32)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveThirdProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
