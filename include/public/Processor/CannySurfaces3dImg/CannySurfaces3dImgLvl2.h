#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: the classes of one volume, in an image of one byte per sample.
class ORVIK_API CannySurfaces3dImgLvl2
    : public processor::Processor<CannySurfaces3dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg3d,
                                  attr::InSubGyImg3d, attr::InSubGzImg3d, attr::InCannyThresholds, attr::OutBinImg>
{
    ORVIK_PROCESSOR(CannySurfaces3dImgLvl2, 4)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
