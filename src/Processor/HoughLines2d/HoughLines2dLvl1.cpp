#include "Processor/HoughLines2d/HoughLines2dLvl1.h"

#include "Processor/HoughLines2d/HoughLines2dLvl2.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HoughLines2dLvl1)

HoughLines2dLvl1::HoughLines2dLvl1() = default;
HoughLines2dLvl1::~HoughLines2dLvl1() = default;

processor::RulePtr HoughLines2dLvl1::createRule() const
{
    const boost::shared_ptr<InGreyImg2d>& in = attribute<InGreyImg2d>();
    const boost::shared_ptr<InOptHoughLinesImgParams>& params = attribute<InOptHoughLinesImgParams>();
    const boost::shared_ptr<InOptHoughLinesExtractionParams>& extraction = attribute<InOptHoughLinesExtractionParams>();
    const boost::shared_ptr<OutOptImg>& out = attribute<OutOptImg>();
    return If(processor::isSet(out),
              customImageProperty(out, houghLines2dCheckOutImgSzXEquals(in, params))
                  && customImageProperty(out, houghLines2dCheckOutImgSzYEquals(in, params, extraction))
                  && customImageProperty(out, houghLines2dCheckOutImgBufferType(in)) && matchSize(eMIST_ZCT, in, out)
                  && matchVolumeGeometryType(in, out) && matchColorGeometryType(in, out) && noInSitu(in, out),
              processor::none())
           && accumulatorHasBins(in, outputHoughLines2d(in, params, extraction));
}

void HoughLines2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIHoughLines2dPpties>(
        initializers, fromImage(attribute<OutPIHoughLines2dPpties>(), attribute<InGreyImg2d>()));
}

processor::RetrievalResult HoughLines2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                              processor::ProviderPtr& provider)
{
    // No rule says so, but planes must never share a list.
    const processor::RulePtr plans =
        matchImagePlans(attribute<OutPIHoughLines2dPpties>(), attribute<InGreyImg2d>(), eIPMP_Planes);
    if (!plans->testRule())
        return processor::RetrievalResult(processor::eRRT_RetrievalFailed, plans->createRuleEvaluatedString(0));
    const BoolResult made =
        customOutput(attribute<OutOptImg>(),
                     outputHoughLines2d(attribute<InGreyImg2d>(), attribute<InOptHoughLinesImgParams>(),
                                        attribute<InOptHoughLinesExtractionParams>()))
            ->initOutputAttribute();
    if (!made.getValue())
        return processor::RetrievalResult(processor::eRRT_RetrievalFailed, made.getMessage());
    return dispatch<HoughLines2dLvl2>(
        priority, provider, entryOfEachPlane<OutHoughLines2dPpties>(value<OutPIHoughLines2dPpties>(), *value<InGreyImg2d>()),
        eachPlane<OutImg>(value<OutOptImg>()), sameIfSet(attribute<InOptHoughLinesImgParams>()),
        sameIfSet(attribute<InOptHoughLinesExtractionParams>()), eachPlane<InSubImg2d>(value<InGreyImg2d>()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> ImagePtr;
typedef boost::shared_ptr<const HoughLinesImgParams> ParamsPtr;
typedef boost::shared_ptr<const HoughLinesExtractionParams> ExtractionPtr;
typedef boost::shared_ptr<HoughLines2dLvl1> ProcessorPtr;

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, const ParamsPtr& params,
                           const ExtractionPtr& extraction)
{
    const ProcessorPtr processor = processor::createInitialised<HoughLines2dLvl1>();
    processor->set<InGreyImg2d>(image);
    processor->set<InOptHoughLinesImgParams>(params);
    processor->set<InOptHoughLinesExtractionParams>(extraction);
    askFor<OutPIHoughLines2dPpties>(planes, *processor);
    return processor;
}

HoughLines2dResult firstPlaneOf(const MultiSliceHoughLines2dResult& result)
{
    return {firstEntryOf(result.first), result.second};
}

MultiSliceHoughLines2dResult runForResult(const ProcessorPtr& processor)
{
    const auto lines = processor::runForOutput<OutPIHoughLines2dPpties>(processor);
    return {lines, processor->getStorage<OutOptImg>()};
}

}  // namespace

HoughLines2dResult houghLines2d(const ImagePtr& image, const ParamsPtr& params, const ExtractionPtr& extraction)
{
    return firstPlaneOf(runForResult(makeProcessor(eAP_One, image, params, extraction)));
}

HoughLines2dResult houghLines2d(const ImagePtr& image)
{
    return houghLines2d(image, ParamsPtr(), ExtractionPtr());
}

ProcessorPtr houghLines2d_async(const ImagePtr& image, const ParamsPtr& params, const ExtractionPtr& extraction)
{
    return processor::startAsync(makeProcessor(eAP_One, image, params, extraction));
}

ProcessorPtr houghLines2d_async(const ImagePtr& image)
{
    return houghLines2d_async(image, ParamsPtr(), ExtractionPtr());
}

MultiSliceHoughLines2dResult multiSlice_houghLines2d(const ImagePtr& image, const ParamsPtr& params,
                                                     const ExtractionPtr& extraction)
{
    return runForResult(makeProcessor(eAP_All, image, params, extraction));
}

MultiSliceHoughLines2dResult multiSlice_houghLines2d(const ImagePtr& image)
{
    return multiSlice_houghLines2d(image, ParamsPtr(), ExtractionPtr());
}

ProcessorPtr multiSlice_houghLines2d_async(const ImagePtr& image, const ParamsPtr& params, const ExtractionPtr& extraction)
{
    return processor::startAsync(makeProcessor(eAP_All, image, params, extraction));
}

ProcessorPtr multiSlice_houghLines2d_async(const ImagePtr& image)
{
    return multiSlice_houghLines2d_async(image, ParamsPtr(), ExtractionPtr());
}

HoughLines2dResult getAsyncProcessorOutput(ProcessorPtr processor)
{
    return firstPlaneOf(getAsyncProcessorMultiSliceOutput(processor));
}

MultiSliceHoughLines2dResult getAsyncProcessorMultiSliceOutput(ProcessorPtr processor)
{
    const auto lines = processor::waitForOutput<OutPIHoughLines2dPpties>(processor);
    return {lines, processor->getStorage<OutOptImg>()};
}

}}}  // namespace orvik::imaproc::fd
