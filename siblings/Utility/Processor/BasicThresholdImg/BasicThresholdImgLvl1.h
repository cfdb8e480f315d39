#pragma once

#include "siblings/Utility/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace util {

/// Level 1: whole images. The result is binary unless the caller gives an image of another type.
class ORVIK_API BasicThresholdImgLvl1
    : public processor::Processor<BasicThresholdImgLvl1, processor::BaseAsync1Processor, attr::InImg, attr::InThresholdMin,
                                  attr::InThresholdMax, attr::OutBinImg>
{
    ORVIK_PROCESSOR(BasicThresholdImgLvl1, 0)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::util
