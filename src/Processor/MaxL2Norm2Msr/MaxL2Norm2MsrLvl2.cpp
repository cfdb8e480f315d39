#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrMerge.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(MaxL2Norm2MsrLvl2)

processor::RulePtr MaxL2Norm2MsrLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d1>(), attribute<InSubImg2d2>())
           && matchBufferType(attribute<InSubImg2d1>(), attribute<InSubImg2d2>());
}

processor::RetrievalResult MaxL2Norm2MsrLvl2::retrieveProvider(const core::BasePriority& priority,
                                                               processor::ProviderPtr& provider)
{
    return dispatch<MaxL2Norm2MsrLvl3>(priority, provider, strips<InYStrip2d1>(value<InSubImg2d1>()),
                                       strips<InYStrip2d2>(value<InSubImg2d2>()), resultOfEach<OutStatsResult>(m_results));
}

processor::StageResult MaxL2Norm2MsrLvl2::postProcess()
{
    value<OutStatsResult>()->set<StatsResult::Max>(largestOf(*m_results));
    return processor::eSRT_Done;
}

void MaxL2Norm2MsrLvl2::clearIntermediateData() noexcept
{
    m_results->clear();
}

}}}  // namespace orvik::imaproc::fd
