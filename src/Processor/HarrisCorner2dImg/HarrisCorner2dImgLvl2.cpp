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

ORVIK_REGISTER_PROCESSOR(HarrisCorner2dImgLvl2)

HarrisCorner2dImgLvl2::HarrisCorner2dImgLvl2() = default;
HarrisCorner2dImgLvl2::~HarrisCorner2dImgLvl2() = default;

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
    const auto gradient = processor::createInitialised<filter::GaussianGradient2dImgLvl1>();
    gradient->set<InImg>(value<InSubImg2d>());
    gradient->set<InStdDevX>(value<InGradStdDev>());
    gradient->set<InStdDevY>(value<InGradStdDev>());
    gradient->set<InOptGradientGaussianCoverage>(value<InGaussianCoverage>());
    gradient->set<OutOptGradXImg>(value<OutWk1Img>());
    gradient->set<OutOptGradYImg>(value<OutWk2Img>());
    return processor::provideProcessor(gradient, priority, provider);
}

processor::RetrievalResult HarrisCorner2dImgLvl2::retrieveSecondProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    const auto tensor = processor::createInitialised<filter::StructureTensor2dImgLvl2>();
    tensor->set<InSubGxImg2d>(value<OutWk1Img>());
    tensor->set<InSubGyImg2d>(value<OutWk2Img>());
    tensor->set<InSmoothingStdDev>(value<InGradStdDev>());
    tensor->set<InGaussianCoverage>(value<InGaussianCoverage>());
    tensor->set<OutGxGxImg>(value<OutWk1Img>());
    tensor->set<OutGyGyImg>(value<OutWk2Img>());
    tensor->set<OutGxGyImg>(value<OutWk3Img>());
    return processor::provideProcessor(tensor, priority, provider);
}

processor::RetrievalResult HarrisCorner2dImgLvl2::retrieveThirdProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dImgLvl3>(
        priority, provider, strips<OutYStrip2d>(value<OutImg>()),
        same<InCornerDetectionParams>(value<InCornerDetectionParams>()), strips<InXYYStrip2d>(value<OutWk3Img>()),
        strips<InYYYStrip2d>(value<OutWk2Img>()), strips<InXXYStrip2d>(value<OutWk1Img>()));
}

}}}  // namespace orvik::imaproc::fd
