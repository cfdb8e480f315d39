#include "Processor/HarrisCorner3d/HarrisCorner3dLvl2.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl2.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HarrisCorner3dLvl2)

processor::RulePtr HarrisCorner3dLvl2::createRule() const
{
    return matchSize(attribute<InSubImg3d>(), attribute<OutWk1Img>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>(),
                               attribute<OutWk4Img>(), attribute<OutWk5Img>(), attribute<OutWk6Img>());
}

processor::RetrievalResult HarrisCorner3dLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    return delegate<HarrisCorner3dImgLvl2>(priority, provider, same(attribute<InSubImg3d>()),
                                           same(attribute<InGradStdDev>()), same(attribute<InGaussianCoverage>()),
                                           same(attribute<InCornerDetectionParams>()), same(attribute<OutWk1Img>()),
                                           same(attribute<OutWk2Img>()), same(attribute<OutWk3Img>()),
                                           same(attribute<OutWk4Img>()), same(attribute<OutWk5Img>()),
                                           same(attribute<OutWk6Img>()), same<OutImg>(value<OutWk1Img>()));
}

processor::RetrievalResult HarrisCorner3dLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return delegate<ExtractLocalExtrema3dLvl2>(priority, provider, same<InSubImg3d>(value<OutWk1Img>()),
                                               same(attribute<InFeaturesDistX>()), same(attribute<InFeaturesDistY>()),
                                               same(attribute<InFeaturesDistZ>()), same(attribute<InLocalExtremaConfig>()),
                                               same(attribute<OutVoxels3d>()));
}

}}}  // namespace orvik::imaproc::fd
