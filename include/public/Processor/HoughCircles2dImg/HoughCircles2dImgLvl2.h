#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane, cut into strips whose children see the gradients as far as the rings reach.
class ORVIK_API HoughCircles2dImgLvl2
    : public processor::Processor<HoughCircles2dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InCircleIntensityType, attr::InMaxAngleWithGradDir,
                                  attr::InHoughCirclesRadiusRange, attr::InHoughCirclesKernelXY, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughCircles2dImgLvl2, 44)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
