#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one volume. The response overwrites the first working image, and is searched for local extrema there.
class ORVIK_API HarrisCorner3dLvl2
    : public processor::Processor<HarrisCorner3dLvl2, processor::BaseAsync2Processor, attr::InSubImg3d, attr::InGradStdDev,
                                  attr::InGaussianCoverage, attr::InCornerDetectionParams, attr::InLocalExtremaConfig,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::InFeaturesDistZ, attr::OutWk1Img,
                                  attr::OutWk2Img, attr::OutWk3Img, attr::OutWk4Img, attr::OutWk5Img, attr::OutWk6Img,
                                  attr::OutVoxels3d>
{
    ORVIK_PROCESSOR(HarrisCorner3dLvl2, 41)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
