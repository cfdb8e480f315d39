#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one volume. The gradient goes to the first three working images, which the tensor overwrites with its diagonal, and
/// its other components to the next three; then the response, which may overwrite the first.
class ORVIK_API HarrisCorner3dImgLvl2
    : public processor::Processor<HarrisCorner3dImgLvl2, processor::BaseAsync3Processor, attr::InSubImg3d,
                                  attr::InGradStdDev, attr::InGaussianCoverage, attr::InCornerDetectionParams,
                                  attr::OutWk1Img, attr::OutWk2Img, attr::OutWk3Img, attr::OutWk4Img, attr::OutWk5Img,
                                  attr::OutWk6Img, attr::OutImg>
{
    ORVIK_PROCESSOR(HarrisCorner3dImgLvl2, 38)

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
