#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one volume, cut into strips of slices whose children see the gradients as far as the shells reach.
class ORVIK_API HoughSpheres3dImgLvl2
    : public processor::Processor<HoughSpheres3dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg3d,
                                  attr::InSubGyImg3d, attr::InSubGzImg3d, attr::InCircleIntensityType,
                                  attr::InMaxAngleWithGradDir, attr::InHoughCirclesRadiusRange,
                                  attr::InHoughSpheresKernelXYZ, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughSpheres3dImgLvl2, 67)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
