#pragma once

#include "Library.h"

#include "frame/processor/Processor.h"

namespace orvik { namespace processor {
class ElementsRange;
}}  // namespace orvik::processor

namespace orvik { namespace imaproc {

namespace attr {
struct InSubImg2d1;
struct InSubImg2d2;
struct OutStatsResult;
class StatsResult;
}  // namespace attr

namespace fd {

/// Level 2: one plane of each image; keeps the largest of its strips.
class ORVIK_API MaxL2Norm2MsrLvl2
    : public processor::Processor<MaxL2Norm2MsrLvl2, processor::BaseAsync1Processor, attr::InSubImg2d1,
                                  attr::InSubImg2d2, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(MaxL2Norm2MsrLvl2, 76)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;

    boost::shared_ptr<std::map<processor::ElementsRange, boost::shared_ptr<attr::StatsResult> > > m_results;
};

}  // namespace fd
}}  // namespace orvik::imaproc
