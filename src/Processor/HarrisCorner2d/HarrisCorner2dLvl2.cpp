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

ORVIK_DEFINE_PROCESSOR(HarrisCorner2dLvl2)

processor::RulePtr HarrisCorner2dLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<OutWk1Img>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>());
}

processor::RetrievalResult HarrisCorner2dLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    return delegate<HarrisCorner2dImgLvl2>(priority, provider, same(attribute<InSubImg2d>()),
                                           same(attribute<InGradStdDev>()), same(attribute<InGaussianCoverage>()),
                                           same(attribute<InCornerDetectionParams>()), same(attribute<OutWk1Img>()),
                                           same(attribute<OutWk2Img>()), same(attribute<OutWk3Img>()),
                                           same<OutImg>(value<OutWk1Img>()));
}

processor::RetrievalResult HarrisCorner2dLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return delegate<ExtractLocalExtrema2dLvl2>(priority, provider, same<InSubImg2d>(value<OutWk1Img>()),
                                               same(attribute<InFeaturesDistX>()), same(attribute<InFeaturesDistY>()),
                                               same(attribute<InLocalExtremaConfig>()), same(attribute<OutPixels2d>()));
}

}}}  // namespace orvik::imaproc::fd
