#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl2.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HarrisCorner2dImgLvl2)

processor::RulePtr HarrisCorner2dImgLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<OutWk1Img>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutImg>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutWk2Img>())
           && matchSizeAndType(attribute<OutWk1Img>(), attribute<OutWk3Img>());
}

processor::RetrievalResult HarrisCorner2dImgLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return delegate<filter::GaussianGradient2dImgLvl1>(
        priority, provider, same<InImg>(value<InSubImg2d>()), same<InStdDevX>(value<InGradStdDev>()),
        same<InStdDevY>(value<InGradStdDev>()), same<InOptGradientGaussianCoverage>(value<InGaussianCoverage>()),
        same<OutOptGradXImg>(value<OutWk1Img>()), same<OutOptGradYImg>(value<OutWk2Img>()));
}

processor::RetrievalResult HarrisCorner2dImgLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return delegate<filter::StructureTensor2dImgLvl2>(
        priority, provider, same<InSubGxImg2d>(value<OutWk1Img>()), same<InSubGyImg2d>(value<OutWk2Img>()),
        same<InSmoothingStdDev>(value<InGradStdDev>()), same(attribute<InGaussianCoverage>()),
        same<OutGxGxImg>(value<OutWk1Img>()), same<OutGyGyImg>(value<OutWk2Img>()), same<OutGxGyImg>(value<OutWk3Img>()));
}

processor::RetrievalResult HarrisCorner2dImgLvl2::retrieveThirdProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dImgLvl3>(priority, provider, strips<OutYStrip2d>(value<OutImg>()),
                                           same(attribute<InCornerDetectionParams>()),
                                           strips<InXYYStrip2d>(value<OutWk3Img>()),
                                           strips<InYYYStrip2d>(value<OutWk2Img>()),
                                           strips<InXXYStrip2d>(value<OutWk1Img>()));
}

}}}  // namespace orvik::imaproc::fd
