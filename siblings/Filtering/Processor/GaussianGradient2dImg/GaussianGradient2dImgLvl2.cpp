#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl2.h"

#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(GaussianGradient2dImgLvl2)

processor::RulePtr GaussianGradient2dImgLvl2::createRule() const
{
    return makesGaussian(attribute<InStdDevX>(), attribute<InGaussianCoverage>())
           && makesGaussian(attribute<InStdDevY>(), attribute<InGaussianCoverage>())
           && matchSize(attribute<InSubImg2d>(), attribute<OutOptSubGradXImg2d>())
           && matchSize(attribute<InSubImg2d>(), attribute<OutOptSubGradYImg2d>());
}

processor::RetrievalResult GaussianGradient2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    const image::StripMargins margins = makeGaussianMargins(
        value<InStdDevY>(), value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(), *value<InSubImg2d>());
    return dispatch<GaussianGradient2dImgLvl3>(priority, provider,
                                               stripsWithMargins<InKnlYStrip2d>(value<InSubImg2d>(), margins),
                                               same(attribute<InStdDevX>()), same(attribute<InStdDevY>()),
                                               same(attribute<InGaussianCoverage>()),
                                               ifSet(strips<OutOptGradXYStrip2d>(value<OutOptSubGradXImg2d>())),
                                               ifSet(strips<OutOptGradYYStrip2d>(value<OutOptSubGradYImg2d>())));
}

}}}  // namespace orvik::imaproc::filter
