#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(CannyEdges2dImgLvl1)

CannyEdges2dImgLvl1::CannyEdges2dImgLvl1() = default;
CannyEdges2dImgLvl1::~CannyEdges2dImgLvl1() = default;

processor::RulePtr CannyEdges2dImgLvl1::createRule() const
{
    const boost::shared_ptr<InGxGreyImg2d>& gx = attribute<InGxGreyImg2d>();
    const auto sizeWhenSet = [&](const auto& working) {
        return If(processor::isSet(working), matchSize(gx, working), processor::none());
    };
    return matchSizeAndType(gx, attribute<InGyGreyImg2d>()) && matchSize(gx, attribute<OutBinImg>())
           && sizeWhenSet(attribute<OutOptWk1BinImg>()) && sizeWhenSet(attribute<OutOptWk2BinImg>())
           && sizeWhenSet(attribute<OutOptWk1LabelImg>())
           // Strips would read gradients that other strips have overwritten.
           && noInSitu(gx, attribute<OutBinImg>()) && noInSitu(attribute<InGyGreyImg2d>(), attribute<OutBinImg>());
}

void CannyEdges2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutBinImg>(
        initializers, duplicateInOut(attribute<OutBinImg>(), attribute<InGxGreyImg2d>(), image::eIBT_Binary));
}

bool CannyEdges2dImgLvl1::usesLabels() const
{
    return value<InOptOptimizationPolicy>() == ePOP_Labels;
}

boost::shared_ptr<image::BaseImage> CannyEdges2dImgLvl1::workingImage() const
{
    return value<OutBinImg>()->hasBinary8BitsStorage() ? value<OutBinImg>() : value<OutOptWk1BinImg>();
}

template<class A>
BoolResult CannyEdges2dImgLvl1::makeWorkingImage(unsigned int bufferType)
{
    return duplicateInOut(attribute<A>(), attribute<OutBinImg>(), static_cast<image::eImageBufferType>(bufferType))
        ->initOutputAttribute();
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                 unsigned int iterationNumber,
                                                                 processor::ProviderPtr& provider)
{
    switch (iterationNumber) {
    case 0: return retrieveFirstProvider(priority, provider);
    case 1: return retrieveSecondProvider(priority, provider);
    case 2: return retrieveThirdProvider(priority, provider);
    case 3: return retrieveFourthProvider(priority, provider);
    case 4: return retrieveFifthProvider(priority, provider);
    case 5: return retrieveSixthProvider(priority, provider);
    default: return invalidIteration(5);
    }
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveFirstProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    if (!value<OutBinImg>()->hasBinary8BitsStorage()) {
        const OutOptWk1BinImg& working = *attribute<OutOptWk1BinImg>();
        if (!working.hasValue() || !working.getStorage()->hasBinary8BitsStorage()) {
            attribute<OutOptWk1BinImg>()->clear();
            const BoolResult made = makeWorkingImage<OutOptWk1BinImg>(image::eIBT_UInt8);
            if (!made.getValue())
                return processor::RetrievalResult(processor::eRRT_RetrievalFailed, made.getMessage());
        }
    }
    return dispatch<CannyEdges2dImgLvl2>(priority, provider, eachPlane<OutBinImg>(workingImage()),
                                         same<InCannyThresholds>(value<InCannyThresholds>()),
                                         eachPlane<InSubGyImg2d>(value<InGyGreyImg2d>()),
                                         eachPlane<InSubGxImg2d>(value<InGxGreyImg2d>()));
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveSecondProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return dispatch<advmorpho::IterativeExtremumPropagation2dImgLvl2>(
            priority, provider, eachPlane<OutImg>(workingImage()), same<InNeighborhood2d>(eN2D_Eight),
            same<InLocalExtremumType>(eLET_Maxima), eachPlane<InSubImg2d>(workingImage()));
    const BoolResult made = makeWorkingImage<OutOptWk2BinImg>(image::eIBT_Binary);
    if (!made.getValue())
        return processor::RetrievalResult(processor::eRRT_RetrievalFailed, made.getMessage());
    return dispatch<advmorpho::LabelExtremumPropagation2dImgThresholdPassLvl2>(
        priority, provider, eachPlane<OutBinImg>(value<OutOptWk2BinImg>()), eachPlane<InSubImg2d>(workingImage()));
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveThirdProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return retrieveThresholdImgProvider(priority, provider);
    const BoolResult made = makeWorkingImage<OutOptWk1LabelImg>(image::eIBT_Label16);
    if (!made.getValue())
        return processor::RetrievalResult(processor::eRRT_RetrievalFailed, made.getMessage());
    m_connectedComponents = processor::createInitialised<advmorpho::ConnectedComponent2dImgLvl1>();
    m_connectedComponents->set<InBinLabImg>(value<OutOptWk2BinImg>());
    m_connectedComponents->set<InOptNeighborhood2d>(eN2D_Eight);
    m_connectedComponents->set<OutLabelImg>(value<OutOptWk1LabelImg>());
    return provideProcessor(m_connectedComponents, priority, provider);
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveFourthProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return processor::RetrievalResult(processor::eRRT_NoMoreProvider);
    // Into the result even when the classes lie in a working image, which the next stage reads: deliberate.
    return dispatch<advmorpho::LabelExtremumPropagation2dImgLutBuildPassLvl2>(
        priority, provider, eachPlane<OutImg>(value<OutBinImg>()), same<InLocalExtremumType>(eLET_Maxima),
        same<InNbLabels>(m_connectedComponents->getStorage<OutMaxLabel>()),
        eachPlane<InSubLabelImg2d>(value<OutOptWk1LabelImg>()), eachPlane<InSubImg2d>(workingImage()));
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveFifthProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return retrieveThresholdImgProvider(priority, provider);
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveSixthProvider(const core::BasePriority&, processor::ProviderPtr&)
{
    return processor::RetrievalResult(processor::eRRT_NoMoreProvider);
}

processor::RetrievalResult CannyEdges2dImgLvl1::retrieveThresholdImgProvider(const core::BasePriority& priority,
                                                                             processor::ProviderPtr& provider)
{
    return dispatch<util::BasicThresholdImgLvl2>(priority, provider, eachPlane<OutBinImg>(value<OutBinImg>()),
                                                 same<InThresholdMax>(255.0), same<InThresholdMin>(2.0),
                                                 eachPlane<InSubImg2d>(workingImage()));
}

namespace {

typedef boost::shared_ptr<const image::BaseImage> InImage;
typedef boost::shared_ptr<const CannyThresholds> Thresholds;

boost::shared_ptr<CannyEdges2dImgLvl1> makeProcessor(const InImage& gx, const InImage& gy, const Thresholds& thresholds)
{
    const boost::shared_ptr<CannyEdges2dImgLvl1> processor = processor::createInitialised<CannyEdges2dImgLvl1>();
    processor->set<InGxGreyImg2d>(gx);
    processor->set<InGyGreyImg2d>(gy);
    processor->set<InCannyThresholds>(thresholds);
    return processor;
}

boost::shared_ptr<CannyEdges2dImgLvl1> makeProcessor(const InImage& gx, const InImage& gy, const Thresholds& thresholds,
                                                     eProcessingOptimizationPolicy policy,
                                                     const boost::shared_ptr<image::BaseImage>& out)
{
    const boost::shared_ptr<CannyEdges2dImgLvl1> processor = makeProcessor(gx, gy, thresholds);
    processor->set<InOptOptimizationPolicy>(policy);
    processor->set<OutBinImg>(out);
    return processor;
}

}  // namespace

boost::shared_ptr<image::BaseImage> cannyEdges2dImg(const InImage& inGxImg2d, const InImage& inGyImg2d,
                                                    const Thresholds& inCannyThresholds)
{
    const boost::shared_ptr<CannyEdges2dImgLvl1> processor = makeProcessor(inGxImg2d, inGyImg2d, inCannyThresholds);
    processor::executeSyncRun(processor);
    return processor->getStorage<OutBinImg>();
}

void cannyEdges2dImg(const InImage& inGxImg2d, const InImage& inGyImg2d, const Thresholds& inCannyThresholds,
                     const eProcessingOptimizationPolicy& inOptimizationPolicy,
                     const boost::shared_ptr<image::BaseImage>& outImg)
{
    processor::executeSyncRun(makeProcessor(inGxImg2d, inGyImg2d, inCannyThresholds, inOptimizationPolicy, outImg));
}

boost::shared_ptr<CannyEdges2dImgLvl1> cannyEdges2dImg_async(const InImage& inGxImg2d, const InImage& inGyImg2d,
                                                             const Thresholds& inCannyThresholds)
{
    return processor::startAsync(makeProcessor(inGxImg2d, inGyImg2d, inCannyThresholds));
}

boost::shared_ptr<CannyEdges2dImgLvl1> cannyEdges2dImg_async(const InImage& inGxImg2d, const InImage& inGyImg2d,
                                                             const Thresholds& inCannyThresholds,
                                                             const eProcessingOptimizationPolicy& inOptimizationPolicy,
                                                             const boost::shared_ptr<image::BaseImage>& outImg)
{
    return processor::startAsync(makeProcessor(inGxImg2d, inGyImg2d, inCannyThresholds, inOptimizationPolicy, outImg));
}

boost::shared_ptr<image::BaseImage> getAsyncProcessorOutput(boost::shared_ptr<CannyEdges2dImgLvl1> processor)
{
    return processor::waitForOutput<OutBinImg>(processor);
}

}}}  // namespace orvik::imaproc::fd
