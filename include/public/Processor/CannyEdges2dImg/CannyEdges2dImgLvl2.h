#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: the classes of one plane, in an image of one byte per sample.
class ORVIK_API CannyEdges2dImgLvl2
    : public processor::Processor<CannyEdges2dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InCannyThresholds, attr::OutBinImg>
{
    ORVIK_PROCESSOR(CannyEdges2dImgLvl2, 1)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
