#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane of each image; keeps the largest of its strips.
class ORVIK_API MaxL2Norm2MsrLvl2 : public processor::Processor<MaxL2Norm2MsrLvl2, processor::BaseAsync1Processor,
                                                                attr::InSubImg2d1, attr::InSubImg2d2, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(MaxL2Norm2MsrLvl2, 76)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;

    processor::ResultsOfStrips<attr::StatsResult> m_results;
};

}}}  // namespace orvik::imaproc::fd
