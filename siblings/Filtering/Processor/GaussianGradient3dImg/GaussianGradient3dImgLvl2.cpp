#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl2.h"

#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(GaussianGradient3dImgLvl2)

processor::RulePtr GaussianGradient3dImgLvl2::createRule() const
{
    return makesGaussian(attribute<InStdDevX>(), attribute<InGaussianCoverage>())
           && makesGaussian(attribute<InStdDevY>(), attribute<InGaussianCoverage>())
           && makesGaussian(attribute<InStdDevZ>(), attribute<InGaussianCoverage>())
           && matchSize(attribute<InSubImg3d>(), attribute<OutOptSubGradXImg3d>())
           && matchSize(attribute<InSubImg3d>(), attribute<OutOptSubGradYImg3d>())
           && matchSize(attribute<InSubImg3d>(), attribute<OutOptSubGradZImg3d>());
}

processor::RetrievalResult GaussianGradient3dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    const double coverage = value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>();
    const unsigned long halfSize = std::min(static_cast<unsigned long>(getGaussianHalfSize(value<InStdDevZ>(), coverage)),
                                            value<InSubImg3d>()->getSizeZ());
    return dispatch<GaussianGradient3dImgLvl3>(priority, provider,
                                               stripsWithMargins<InKnlZStrip3d>(value<InSubImg3d>(), 0, 0, halfSize),
                                               same(attribute<InStdDevX>()), same(attribute<InStdDevY>()),
                                               same(attribute<InStdDevZ>()), same(attribute<InGaussianCoverage>()),
                                               ifSet(strips<OutOptGradXZStrip3d>(value<OutOptSubGradXImg3d>())),
                                               ifSet(strips<OutOptGradYZStrip3d>(value<OutOptSubGradYImg3d>())),
                                               ifSet(strips<OutOptGradZZStrip3d>(value<OutOptSubGradZImg3d>())));
}

}}}  // namespace orvik::imaproc::filter
