#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"

#include "Processor/HarrisCorner2d/HarrisCorner2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/GaussianRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HarrisCorner2dLvl1)

HarrisCorner2dLvl1::HarrisCorner2dLvl1() = default;
HarrisCorner2dLvl1::~HarrisCorner2dLvl1() = default;

processor::RulePtr HarrisCorner2dLvl1::createRule() const
{
    const WeakImage in = attribute<InImg>();
    const WeakImage wk1 = attribute<OutWk1Img>(), wk2 = attribute<OutWk2Img>(), wk3 = attribute<OutWk3Img>();
    return matchImagePlans(attribute<OutPIPixels2d>(), in, eIPMP_Planes) && matchSize(in, wk1)
           && matchSizeAndType(wk1, wk2, wk3)
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           // Known here, though the stages would refuse them, too: later the working images would have been written.
           && noInSitu(in, wk1) && noInSitu(in, wk2) && noInSitu(wk1, wk2) && noInSitu(wk1, wk3) && noInSitu(wk2, wk3);
}

void HarrisCorner2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutWk1Img>(initializers, promoteUnary(attribute<OutWk1Img>(), attribute<InImg>()));
    addInitializer<OutWk2Img>(initializers, promoteUnary(attribute<OutWk2Img>(), attribute<InImg>()));
    addInitializer<OutWk3Img>(initializers, promoteUnary(attribute<OutWk3Img>(), attribute<InImg>()));
    addInitializer<OutPIPixels2d>(initializers, fromImage(attribute<OutPIPixels2d>(), attribute<InImg>()));
}

processor::RetrievalResult HarrisCorner2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dLvl2>(
        priority, provider, entryOfEachPlane<OutPixels2d>(value<OutPIPixels2d>(), *value<InImg>()),
        eachPlane<OutWk3Img>(value<OutWk3Img>()), eachPlane<OutWk2Img>(value<OutWk2Img>()),
        eachPlane<OutWk1Img>(value<OutWk1Img>()), same<InFeaturesDistY>(value<InFeaturesDistY>()),
        same<InFeaturesDistX>(value<InFeaturesDistX>()), same<InLocalExtremaConfig>(value<InLocalExtremaConfig>()),
        same<InCornerDetectionParams>(value<InOptCornerDetectionParams2d>()),
        same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
        same<InGradStdDev>(value<InOptGradStdDev>()), eachPlane<InSubImg2d>(value<InImg>()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> ImagePtr;
typedef boost::shared_ptr<const GaussianCoverage> Coverage;
typedef boost::shared_ptr<const CornerDetectionParams> Params;
typedef boost::shared_ptr<const LocalExtremaConfig> Config;
typedef boost::shared_ptr<HarrisCorner2dLvl1> ProcessorPtr;

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, const Config& config, unsigned int distX,
                           unsigned int distY)
{
    const ProcessorPtr processor = processor::createInitialised<HarrisCorner2dLvl1>();
    processor->set<InImg>(image);
    processor->set<InLocalExtremaConfig>(config);
    processor->set<InFeaturesDistX>(distX);
    processor->set<InFeaturesDistY>(distY);
    askFor<OutPIPixels2d>(planes, *processor);
    return processor;
}

// The three lists of arguments.

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, unsigned long maxNbCorners, unsigned int dist)
{
    return makeProcessor(planes, image, createLocalExtremaConfig(maxNbCorners), dist, dist);
}

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, float stdDev, unsigned long maxNbCorners,
                           unsigned int dist)
{
    const ProcessorPtr processor = makeProcessor(planes, image, maxNbCorners, dist);
    processor->set<InOptGradStdDev>(stdDev);
    return processor;
}

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, float stdDev, const Coverage& coverage,
                           const Params& params, unsigned long maxNbCorners, double threshold, unsigned int distX,
                           unsigned int distY)
{
    const ProcessorPtr processor =
        makeProcessor(planes, image, createLocalExtremaConfig(threshold, maxNbCorners), distX, distY);
    processor->set<InOptGradStdDev>(stdDev);
    processor->set<InOptCornerDetectionParams2d>(params);
    processor->set<InOptGradientGaussianCoverage>(coverage);
    return processor;
}

boost::shared_ptr<PlanIndexedPixels2d> runAll(const ProcessorPtr& processor)
{
    return processor::runForOutput<OutPIPixels2d>(processor);
}

boost::shared_ptr<Pixels2d> runOne(const ProcessorPtr& processor)
{
    return firstEntryOf(runAll(processor));
}

}  // namespace

boost::shared_ptr<Pixels2d> harrisCorner2d(const ImagePtr& image, unsigned long maxNbCorners, unsigned int dist)
{
    return runOne(makeProcessor(eAP_One, image, maxNbCorners, dist));
}

boost::shared_ptr<Pixels2d> harrisCorner2d(const ImagePtr& image, float stdDev, unsigned long maxNbCorners,
                                           unsigned int dist)
{
    return runOne(makeProcessor(eAP_One, image, stdDev, maxNbCorners, dist));
}

boost::shared_ptr<Pixels2d> harrisCorner2d(const ImagePtr& image, float stdDev, const Coverage& coverage,
                                           const Params& params, unsigned long maxNbCorners, double threshold,
                                           unsigned int distX, unsigned int distY)
{
    return runOne(makeProcessor(eAP_One, image, stdDev, coverage, params, maxNbCorners, threshold, distX, distY));
}

ProcessorPtr harrisCorner2d_async(const ImagePtr& image, unsigned long maxNbCorners, unsigned int dist)
{
    return processor::startAsync(makeProcessor(eAP_One, image, maxNbCorners, dist));
}

ProcessorPtr harrisCorner2d_async(const ImagePtr& image, float stdDev, unsigned long maxNbCorners, unsigned int dist)
{
    return processor::startAsync(makeProcessor(eAP_One, image, stdDev, maxNbCorners, dist));
}

ProcessorPtr harrisCorner2d_async(const ImagePtr& image, float stdDev, const Coverage& coverage, const Params& params,
                                  unsigned long maxNbCorners, double threshold, unsigned int distX, unsigned int distY)
{
    return processor::startAsync(
        makeProcessor(eAP_One, image, stdDev, coverage, params, maxNbCorners, threshold, distX, distY));
}

boost::shared_ptr<PlanIndexedPixels2d> multiSlice_harrisCorner2d(const ImagePtr& image, unsigned long maxNbCorners,
                                                                 unsigned int dist)
{
    return runAll(makeProcessor(eAP_All, image, maxNbCorners, dist));
}

boost::shared_ptr<PlanIndexedPixels2d> multiSlice_harrisCorner2d(const ImagePtr& image, float stdDev,
                                                                 unsigned long maxNbCorners, unsigned int dist)
{
    return runAll(makeProcessor(eAP_All, image, stdDev, maxNbCorners, dist));
}

boost::shared_ptr<PlanIndexedPixels2d> multiSlice_harrisCorner2d(const ImagePtr& image, float stdDev,
                                                                 const Coverage& coverage, const Params& params,
                                                                 unsigned long maxNbCorners, double threshold,
                                                                 unsigned int distX, unsigned int distY)
{
    return runAll(makeProcessor(eAP_All, image, stdDev, coverage, params, maxNbCorners, threshold, distX, distY));
}

ProcessorPtr multiSlice_harrisCorner2d_async(const ImagePtr& image, unsigned long maxNbCorners, unsigned int dist)
{
    return processor::startAsync(makeProcessor(eAP_All, image, maxNbCorners, dist));
}

ProcessorPtr multiSlice_harrisCorner2d_async(const ImagePtr& image, float stdDev, unsigned long maxNbCorners,
                                             unsigned int dist)
{
    return processor::startAsync(makeProcessor(eAP_All, image, stdDev, maxNbCorners, dist));
}

ProcessorPtr multiSlice_harrisCorner2d_async(const ImagePtr& image, float stdDev, const Coverage& coverage,
                                             const Params& params, unsigned long maxNbCorners, double threshold,
                                             unsigned int distX, unsigned int distY)
{
    return processor::startAsync(
        makeProcessor(eAP_All, image, stdDev, coverage, params, maxNbCorners, threshold, distX, distY));
}

boost::shared_ptr<Pixels2d> getAsyncProcessorOutput(ProcessorPtr processor)
{
    return firstEntryOf(getAsyncProcessorMultiSliceOutput(processor));
}

boost::shared_ptr<PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(ProcessorPtr processor)
{
    return processor::waitForOutput<OutPIPixels2d>(processor);
}

}}}  // namespace orvik::imaproc::fd
