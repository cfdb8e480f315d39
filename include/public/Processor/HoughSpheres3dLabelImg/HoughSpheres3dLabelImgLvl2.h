#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: the spheres of one volume.
class ORVIK_API HoughSpheres3dLabelImgLvl2
    : public processor::Processor<HoughSpheres3dLabelImgLvl2, processor::BaseAsync1Processor, attr::InHoughSpheres3dPpties,
                                  attr::OutSubLabelImg3d>
{
    ORVIK_PROCESSOR(HoughSpheres3dLabelImgLvl2, 73)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
