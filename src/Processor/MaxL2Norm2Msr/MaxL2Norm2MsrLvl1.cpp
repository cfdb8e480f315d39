#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrMerge.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(MaxL2Norm2MsrLvl1)

processor::RulePtr MaxL2Norm2MsrLvl1::createRule() const
{
    return matchSize(attribute<InImg1>(), attribute<InImg2>()) && matchBufferType(attribute<InImg1>(), attribute<InImg2>());
}

processor::RetrievalResult MaxL2Norm2MsrLvl1::retrieveProvider(const core::BasePriority& priority,
                                                               processor::ProviderPtr& provider)
{
    return dispatch<MaxL2Norm2MsrLvl2>(priority, provider, eachPlane<InSubImg2d1>(value<InImg1>()),
                                       eachPlane<InSubImg2d2>(value<InImg2>()), resultOfEach<OutStatsResult>(m_results));
}

processor::StageResult MaxL2Norm2MsrLvl1::postProcess()
{
    attribute<OutMax>()->accessValue() = largestOf(*m_results);
    return processor::eSRT_Done;
}

void MaxL2Norm2MsrLvl1::clearIntermediateData() noexcept
{
    m_results->clear();
}

typedef FunctionForms<MaxL2Norm2MsrLvl1, OutMax> Forms;

ORVIK_FUNCTION(maxL2Norm2Msr, (const ConstImagePtr&, in1)(const ConstImagePtr&, in2))
{
    processor.set<InImg1>(in1);
    processor.set<InImg2>(in2);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
