#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane, cut into strips whose children see the gradients as far as the rings reach.
class ORVIK_API HoughCirclesPhaseCoded2dImgLvl2
    : public processor::Processor<HoughCirclesPhaseCoded2dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InCircleIntensityType, attr::InMaxAngleWithGradDir,
                                  attr::InHoughCirclesRadiusRange, attr::InHoughCirclesPhaseCodedKernelXY,
                                  attr::OutComplexRealImg, attr::OutComplexImImg>
{
    ORVIK_PROCESSOR(HoughCirclesPhaseCoded2dImgLvl2, 49)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
