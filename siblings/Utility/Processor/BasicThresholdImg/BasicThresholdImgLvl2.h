#pragma once

#include "siblings/Utility/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace util {

/// Level 2: one plane. 1 where min <= value <= max, else 0, also for NaN. Input and result may be one image.
class ORVIK_API BasicThresholdImgLvl2
    : public processor::Processor<BasicThresholdImgLvl2, processor::BaseAsync1Processor, attr::InSubImg2d,
                                  attr::InThresholdMin, attr::InThresholdMax, attr::OutBinImg>
{
    ORVIK_PROCESSOR(BasicThresholdImgLvl2, 1)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::util
