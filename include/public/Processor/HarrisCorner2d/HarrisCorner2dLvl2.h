#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. The response overwrites the first working image, and is searched for local extrema there.
class ORVIK_API HarrisCorner2dLvl2
    : public processor::Processor<HarrisCorner2dLvl2, processor::BaseAsync2Processor, attr::InSubImg2d, attr::InGradStdDev,
                                  attr::InGaussianCoverage, attr::InCornerDetectionParams, attr::InLocalExtremaConfig,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::OutWk1Img, attr::OutWk2Img,
                                  attr::OutWk3Img, attr::OutPixels2d>
{
    ORVIK_PROCESSOR(HarrisCorner2dLvl2, 35)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
