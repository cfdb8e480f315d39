#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"

#include "MaxL2Norm2MsrMerge.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(MaxL2Norm2MsrLvl1)

MaxL2Norm2MsrLvl1::MaxL2Norm2MsrLvl1()
    : m_results(boost::make_shared<std::map<unsigned int, boost::shared_ptr<StatsResult> > >())
{
}

MaxL2Norm2MsrLvl1::~MaxL2Norm2MsrLvl1() = default;

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
    return processor::StageResult(processor::eSRT_Done);
}

void MaxL2Norm2MsrLvl1::clearIntermediateData() noexcept
{
    m_results->clear();
}

namespace {

boost::shared_ptr<MaxL2Norm2MsrLvl1> makeProcessor(const boost::shared_ptr<const image::BaseImage>& in1,
                                                   const boost::shared_ptr<const image::BaseImage>& in2)
{
    const boost::shared_ptr<MaxL2Norm2MsrLvl1> processor = processor::createInitialised<MaxL2Norm2MsrLvl1>();
    processor->set<InImg1>(in1);
    processor->set<InImg2>(in2);
    return processor;
}

}  // namespace

double maxL2Norm2Msr(const boost::shared_ptr<const image::BaseImage>& in1,
                     const boost::shared_ptr<const image::BaseImage>& in2)
{
    const boost::shared_ptr<MaxL2Norm2MsrLvl1> processor = makeProcessor(in1, in2);
    processor::executeSyncRun(processor);
    return processor->getStorage<OutMax>();
}

boost::shared_ptr<MaxL2Norm2MsrLvl1> maxL2Norm2Msr_async(const boost::shared_ptr<const image::BaseImage>& in1,
                                                         const boost::shared_ptr<const image::BaseImage>& in2)
{
    return processor::startAsync(makeProcessor(in1, in2));
}

double getAsyncProcessorOutput(boost::shared_ptr<MaxL2Norm2MsrLvl1> processor)
{
    return processor::waitForOutput<OutMax>(processor);
}

}}}  // namespace orvik::imaproc::fd
