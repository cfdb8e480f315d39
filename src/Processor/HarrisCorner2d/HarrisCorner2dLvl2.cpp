#include "Processor/HarrisCorner2d/HarrisCorner2dLvl2.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HarrisCorner2dLvl2)

HarrisCorner2dLvl2::HarrisCorner2dLvl2() = default;
HarrisCorner2dLvl2::~HarrisCorner2dLvl2() = default;

processor::RulePtr HarrisCorner2dLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<OutWk1Img>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>());
}

processor::RetrievalResult HarrisCorner2dLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    const auto response = processor::createInitialised<HarrisCorner2dImgLvl2>();
    response->set<InSubImg2d>(value<InSubImg2d>());
    response->set<InGradStdDev>(value<InGradStdDev>());
    response->set<InGaussianCoverage>(value<InGaussianCoverage>());
    response->set<InCornerDetectionParams>(value<InCornerDetectionParams>());
    response->set<OutWk1Img>(value<OutWk1Img>());
    response->set<OutWk2Img>(value<OutWk2Img>());
    response->set<OutWk3Img>(value<OutWk3Img>());
    response->set<OutImg>(value<OutWk1Img>());
    return processor::provideProcessor(response, priority, provider);
}

processor::RetrievalResult HarrisCorner2dLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const auto extrema = processor::createInitialised<ExtractLocalExtrema2dLvl2>();
    extrema->set<InSubImg2d>(value<OutWk1Img>());
    extrema->set<InFeaturesDistX>(value<InFeaturesDistX>());
    extrema->set<InFeaturesDistY>(value<InFeaturesDistY>());
    extrema->set<InLocalExtremaConfig>(value<InLocalExtremaConfig>());
    extrema->set<OutPixels2d>(value<OutPixels2d>());
    return processor::provideProcessor(extrema, priority, provider);
}

}}}  // namespace orvik::imaproc::fd
