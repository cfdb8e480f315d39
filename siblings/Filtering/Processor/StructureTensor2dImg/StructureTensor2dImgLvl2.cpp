#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"

#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(StructureTensor2dImgLvl2)

processor::RulePtr StructureTensor2dImgLvl2::createRule() const
{
    const auto fits = [this](const WeakImage& out) { return matchSize(attribute<InSubGxImg2d>(), out); };
    return makesGaussian(attribute<InSmoothingStdDev>(), attribute<InGaussianCoverage>())
           && matchSizeAndType(attribute<InSubGxImg2d>(), attribute<InSubGyImg2d>()) && fits(attribute<OutGxGxImg>())
           && fits(attribute<OutGyGyImg>()) && fits(attribute<OutGxGyImg>())
           && imagesApart(*this, mayBeSame<InSubGxImg2d, OutGxGxImg>, mayBeSame<InSubGxImg2d, OutGyGyImg>,
                          mayBeSame<InSubGxImg2d, OutGxGyImg>, mayBeSame<InSubGyImg2d, OutGxGxImg>,
                          mayBeSame<InSubGyImg2d, OutGyGyImg>, mayBeSame<InSubGyImg2d, OutGxGyImg>);
}

processor::RetrievalResult StructureTensor2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const image::StripMargins margins = makeGaussianMargins(static_cast<double>(value<InSmoothingStdDev>()),
                                                            value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(),
                                                            *value<InSubGxImg2d>());
    return dispatch<StructureTensor2dImgLvl3>(
        priority, provider, stripsInPlace<InGxKnlYStrip2d>(value<InSubGxImg2d>(), margins),
        stripsInPlace<InGyKnlYStrip2d>(value<InSubGyImg2d>(), margins), same(attribute<InSmoothingStdDev>()),
        same(attribute<InGaussianCoverage>()), strips<OutGxGxYStrip2d>(value<OutGxGxImg>()),
        strips<OutGyGyYStrip2d>(value<OutGyGyImg>()), strips<OutGxGyYStrip2d>(value<OutGxGyImg>()));
}

}}}  // namespace orvik::imaproc::filter
