#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl2.h"

#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HarrisCorner3dImgLvl2)

processor::RulePtr HarrisCorner3dImgLvl2::createRule() const
{
    const auto like = [this](const WeakImage& wk) { return matchSizeAndType(attribute<OutWk1Img>(), wk); };
    return matchSize(attribute<InSubImg3d>(), attribute<OutWk1Img>()) && like(attribute<OutImg>())
           && like(attribute<OutWk2Img>()) && like(attribute<OutWk3Img>()) && like(attribute<OutWk4Img>())
           && like(attribute<OutWk5Img>()) && like(attribute<OutWk6Img>());
}

processor::RetrievalResult HarrisCorner3dImgLvl2::retrieveFirstProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return delegate<filter::GaussianGradient3dImgLvl1>(
        priority, provider, same<InImg3d>(value<InSubImg3d>()), same<InStdDevX>(value<InGradStdDev>()),
        same<InStdDevY>(value<InGradStdDev>()), same<InStdDevZ>(value<InGradStdDev>()),
        same<InOptGradientGaussianCoverage>(value<InGaussianCoverage>()), same<OutOptGradXImg3d>(value<OutWk1Img>()),
        same<OutOptGradYImg3d>(value<OutWk2Img>()), same<OutOptGradZImg3d>(value<OutWk3Img>()));
}

processor::RetrievalResult HarrisCorner3dImgLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return delegate<filter::StructureTensor3dImgLvl2>(
        priority, provider, same<InSubGxImg3d>(value<OutWk1Img>()), same<InSubGyImg3d>(value<OutWk2Img>()),
        same<InSubGzImg3d>(value<OutWk3Img>()), same<InSmoothingStdDev>(value<InGradStdDev>()),
        same(attribute<InGaussianCoverage>()), same<OutGxGxImg>(value<OutWk1Img>()), same<OutGyGyImg>(value<OutWk2Img>()),
        same<OutGzGzImg>(value<OutWk3Img>()), same<OutGxGyImg>(value<OutWk4Img>()), same<OutGxGzImg>(value<OutWk5Img>()),
        same<OutGyGzImg>(value<OutWk6Img>()));
}

processor::RetrievalResult HarrisCorner3dImgLvl2::retrieveThirdProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner3dImgLvl3>(
        priority, provider, strips<OutZStrip3d>(value<OutImg>()), same(attribute<InCornerDetectionParams>()),
        strips<InYZZStrip3d>(value<OutWk6Img>()), strips<InXZZStrip3d>(value<OutWk5Img>()),
        strips<InXYZStrip3d>(value<OutWk4Img>()), strips<InZZZStrip3d>(value<OutWk3Img>()),
        strips<InYYZStrip3d>(value<OutWk2Img>()), strips<InXXZStrip3d>(value<OutWk1Img>()));
}

}}}  // namespace orvik::imaproc::fd
