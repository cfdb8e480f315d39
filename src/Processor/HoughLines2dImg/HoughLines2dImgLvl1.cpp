#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HoughLines2dImgLvl1)

HoughLines2dImgLvl1::HoughLines2dImgLvl1() = default;
HoughLines2dImgLvl1::~HoughLines2dImgLvl1() = default;

processor::RulePtr HoughLines2dImgLvl1::createRule() const
{
    const boost::shared_ptr<InGreyImg2d>& in = attribute<InGreyImg2d>();
    const boost::shared_ptr<InOptHoughLinesImgParams>& params = attribute<InOptHoughLinesImgParams>();
    const boost::shared_ptr<OutImg>& out = attribute<OutImg>();
    return customImageProperty(out, houghLines2dCheckOutImgSzXEquals(in, params))
           && customImageProperty(out, houghLines2dCheckOutImgSzYEquals(in, params))
           && customImageProperty(out, houghLines2dCheckOutImgBufferType(in)) && matchSize(eMIST_ZCT, in, out)
           && matchVolumeGeometryType(in, out) && matchColorGeometryType(in, out) && noInSitu(in, out)
           && accumulatorHasBins(in, outputHoughLines2dImg(in, params));
}

void HoughLines2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutImg>(initializers,
                           customOutput(attribute<OutImg>(), outputHoughLines2dImg(attribute<InGreyImg2d>(),
                                                                                   attribute<InOptHoughLinesImgParams>())));
}

processor::RetrievalResult HoughLines2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                 processor::ProviderPtr& provider)
{
    return dispatch<HoughLines2dImgLvl2>(priority, provider, eachPlane<OutImg>(value<OutImg>()),
                                         eachPlane<InSubImg2d>(value<InGreyImg2d>()),
                                         sameIfSet(attribute<InOptHoughLinesImgParams>()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> ImagePtr;
typedef boost::shared_ptr<const HoughLinesImgParams> ParamsPtr;
typedef boost::shared_ptr<HoughLines2dImgLvl1> ProcessorPtr;

ProcessorPtr makeProcessor(const ImagePtr& image, const ParamsPtr& params)
{
    const ProcessorPtr processor = processor::createInitialised<HoughLines2dImgLvl1>();
    processor->set<InGreyImg2d>(image);
    processor->set<InOptHoughLinesImgParams>(params);
    return processor;
}

}  // namespace

boost::shared_ptr<image::BaseImage> houghLines2dImg(const ImagePtr& image, const ParamsPtr& params)
{
    return processor::runForOutput<OutImg>(makeProcessor(image, params));
}

boost::shared_ptr<image::BaseImage> houghLines2dImg(const ImagePtr& image)
{
    return houghLines2dImg(image, ParamsPtr());
}

ProcessorPtr houghLines2dImg_async(const ImagePtr& image, const ParamsPtr& params)
{
    return processor::startAsync(makeProcessor(image, params));
}

ProcessorPtr houghLines2dImg_async(const ImagePtr& image)
{
    return houghLines2dImg_async(image, ParamsPtr());
}

boost::shared_ptr<image::BaseImage> getAsyncProcessorOutput(ProcessorPtr processor)
{
    return processor::waitForOutput<OutImg>(processor);
}

}}}  // namespace orvik::imaproc::fd
