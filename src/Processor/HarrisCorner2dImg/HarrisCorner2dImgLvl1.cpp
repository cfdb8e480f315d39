#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/GaussianRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HarrisCorner2dImgLvl1)

HarrisCorner2dImgLvl1::HarrisCorner2dImgLvl1() = default;
HarrisCorner2dImgLvl1::~HarrisCorner2dImgLvl1() = default;

processor::RulePtr HarrisCorner2dImgLvl1::createRule() const
{
    const WeakImage in = attribute<InImg>(), out = attribute<OutImg>();
    const WeakImage wk1 = attribute<OutWk1Img>(), wk2 = attribute<OutWk2Img>(), wk3 = attribute<OutWk3Img>();
    return matchSize(in, wk1) && matchSizeAndType(wk1, out) && matchSizeAndType(wk1, wk2, wk3)
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           // Known here, though the stages would refuse them, too: later the working images would have been written.
           && noInSitu(in, wk1) && noInSitu(in, wk2) && noInSitu(wk1, wk2) && noInSitu(wk1, wk3) && noInSitu(wk2, wk3)
           && inSituOrApart(wk1, out) && inSituOrApart(wk2, out) && inSituOrApart(wk3, out);
}

void HarrisCorner2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutWk1Img>(initializers, promoteUnary(attribute<OutWk1Img>(), attribute<InImg>()));
    addInitializer<OutWk2Img>(initializers, promoteUnary(attribute<OutWk2Img>(), attribute<InImg>()));
    addInitializer<OutWk3Img>(initializers, promoteUnary(attribute<OutWk3Img>(), attribute<InImg>()));
    addInitializer<OutImg>(initializers, promoteUnary(attribute<OutImg>(), attribute<InImg>()));
}

processor::RetrievalResult HarrisCorner2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dImgLvl2>(
        priority, provider, eachPlane<OutImg>(value<OutImg>()), eachPlane<OutWk3Img>(value<OutWk3Img>()),
        eachPlane<OutWk2Img>(value<OutWk2Img>()), eachPlane<OutWk1Img>(value<OutWk1Img>()),
        same<InCornerDetectionParams>(value<InOptCornerDetectionParams2d>()),
        same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
        same<InGradStdDev>(value<InOptGradStdDev>()), eachPlane<InSubImg2d>(value<InImg>()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> InImage;
typedef boost::shared_ptr<image::BaseImage> OutImage;
typedef boost::shared_ptr<const GaussianCoverage> Coverage;
typedef boost::shared_ptr<const CornerDetectionParams> Params;
typedef boost::shared_ptr<HarrisCorner2dImgLvl1> ProcessorPtr;

ProcessorPtr makeProcessor(const InImage& in)
{
    const ProcessorPtr processor = processor::createInitialised<HarrisCorner2dImgLvl1>();
    processor->set<InImg>(in);
    return processor;
}

ProcessorPtr makeProcessor(const InImage& in, float stdDev)
{
    const ProcessorPtr processor = makeProcessor(in);
    processor->set<InOptGradStdDev>(stdDev);
    return processor;
}

ProcessorPtr makeProcessor(const InImage& in, float stdDev, const Coverage& coverage, const Params& params,
                           const OutImage& out)
{
    const ProcessorPtr processor = makeProcessor(in, stdDev);
    processor->set<InOptGradientGaussianCoverage>(coverage);
    processor->set<InOptCornerDetectionParams2d>(params);
    processor->set<OutImg>(out);
    return processor;
}

OutImage runToNewImage(const ProcessorPtr& processor)
{
    processor::executeSyncRun(processor);
    return processor->getStorage<OutImg>();
}

}  // namespace

OutImage harrisCorner2dImg(const InImage& inImg)
{
    return runToNewImage(makeProcessor(inImg));
}

OutImage harrisCorner2dImg(const InImage& inImg, float inOptGradStdDev)
{
    return runToNewImage(makeProcessor(inImg, inOptGradStdDev));
}

void harrisCorner2dImg(const InImage& inImg, float inOptGradStdDev, const Coverage& inOptGradientGaussianCoverage,
                       const Params& inOptCornerDetectionParams, const OutImage& outImg)
{
    processor::executeSyncRun(
        makeProcessor(inImg, inOptGradStdDev, inOptGradientGaussianCoverage, inOptCornerDetectionParams, outImg));
}

ProcessorPtr harrisCorner2dImg_async(const InImage& inImg)
{
    return processor::startAsync(makeProcessor(inImg));
}

ProcessorPtr harrisCorner2dImg_async(const InImage& inImg, float inOptGradStdDev)
{
    return processor::startAsync(makeProcessor(inImg, inOptGradStdDev));
}

ProcessorPtr harrisCorner2dImg_async(const InImage& inImg, float inOptGradStdDev,
                                     const Coverage& inOptGradientGaussianCoverage,
                                     const Params& inOptCornerDetectionParams, const OutImage& outImg)
{
    return processor::startAsync(
        makeProcessor(inImg, inOptGradStdDev, inOptGradientGaussianCoverage, inOptCornerDetectionParams, outImg));
}

OutImage getAsyncProcessorOutput(ProcessorPtr processor)
{
    return processor::waitForOutput<OutImg>(processor);
}

}}}  // namespace orvik::imaproc::fd
