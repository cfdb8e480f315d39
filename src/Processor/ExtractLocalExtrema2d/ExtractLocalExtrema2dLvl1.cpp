#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(ExtractLocalExtrema2dLvl1)

ExtractLocalExtrema2dLvl1::ExtractLocalExtrema2dLvl1() = default;
ExtractLocalExtrema2dLvl1::~ExtractLocalExtrema2dLvl1() = default;

processor::RulePtr ExtractLocalExtrema2dLvl1::createRule() const
{
    return matchImagePlans(attribute<OutPIPixels2d>(), attribute<InImg>(), eIPMP_Planes);
}

void ExtractLocalExtrema2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIPixels2d>(initializers, fromImage(attribute<OutPIPixels2d>(), attribute<InImg>()));
}

processor::RetrievalResult ExtractLocalExtrema2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    if (!attribute<InOptLocalExtremaConfig>()->hasValue())
        set<InOptLocalExtremaConfig>(createLocalExtremaConfig());
    return dispatch<ExtractLocalExtrema2dLvl2>(
        priority, provider, entryOfEachPlane<OutPixels2d>(value<OutPIPixels2d>(), *value<InImg>()),
        same<InLocalExtremaConfig>(value<InOptLocalExtremaConfig>()), same<InFeaturesDistX>(value<InFeaturesDistX>()),
        same<InFeaturesDistY>(value<InFeaturesDistY>()), eachPlane<InSubImg2d>(value<InImg>()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> ImagePtr;
typedef boost::shared_ptr<const LocalExtremaConfig> ConfigPtr;
typedef boost::shared_ptr<ExtractLocalExtrema2dLvl1> ProcessorPtr;

ProcessorPtr makeProcessor(eAskedPlanes planes, const ImagePtr& image, unsigned int distX, unsigned int distY,
                           const ConfigPtr& config)
{
    const ProcessorPtr processor = processor::createInitialised<ExtractLocalExtrema2dLvl1>();
    processor->set<InImg>(image);
    processor->set<InFeaturesDistX>(distX);
    processor->set<InFeaturesDistY>(distY);
    processor->set<InOptLocalExtremaConfig>(config);
    askFor<OutPIPixels2d>(planes, *processor);
    return processor;
}

}  // namespace

boost::shared_ptr<Pixels2d> extractLocalExtrema2d(const ImagePtr& image, unsigned int distX, unsigned int distY,
                                                  const ConfigPtr& config)
{
    return firstEntryOf(processor::runForOutput<OutPIPixels2d>(makeProcessor(eAP_One, image, distX, distY, config)));
}

boost::shared_ptr<Pixels2d> extractLocalExtrema2d(const ImagePtr& image, unsigned int distX, unsigned int distY)
{
    return extractLocalExtrema2d(image, distX, distY, ConfigPtr());
}

ProcessorPtr extractLocalExtrema2d_async(const ImagePtr& image, unsigned int distX, unsigned int distY,
                                         const ConfigPtr& config)
{
    return processor::startAsync(makeProcessor(eAP_One, image, distX, distY, config));
}

ProcessorPtr extractLocalExtrema2d_async(const ImagePtr& image, unsigned int distX, unsigned int distY)
{
    return extractLocalExtrema2d_async(image, distX, distY, ConfigPtr());
}

boost::shared_ptr<PlanIndexedPixels2d> multiSlice_extractLocalExtrema2d(const ImagePtr& image, unsigned int distX,
                                                                        unsigned int distY, const ConfigPtr& config)
{
    return processor::runForOutput<OutPIPixels2d>(makeProcessor(eAP_All, image, distX, distY, config));
}

boost::shared_ptr<PlanIndexedPixels2d> multiSlice_extractLocalExtrema2d(const ImagePtr& image, unsigned int distX,
                                                                        unsigned int distY)
{
    return multiSlice_extractLocalExtrema2d(image, distX, distY, ConfigPtr());
}

ProcessorPtr multiSlice_extractLocalExtrema2d_async(const ImagePtr& image, unsigned int distX, unsigned int distY,
                                                    const ConfigPtr& config)
{
    return processor::startAsync(makeProcessor(eAP_All, image, distX, distY, config));
}

ProcessorPtr multiSlice_extractLocalExtrema2d_async(const ImagePtr& image, unsigned int distX, unsigned int distY)
{
    return multiSlice_extractLocalExtrema2d_async(image, distX, distY, ConfigPtr());
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
