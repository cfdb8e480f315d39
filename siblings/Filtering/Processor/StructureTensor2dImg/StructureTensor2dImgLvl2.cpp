#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"

#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(StructureTensor2dImgLvl2)

StructureTensor2dImgLvl2::StructureTensor2dImgLvl2() = default;
StructureTensor2dImgLvl2::~StructureTensor2dImgLvl2() = default;

processor::RulePtr StructureTensor2dImgLvl2::createRule() const
{
    const auto fits = [this](const WeakImage& out) {
        return matchSize(attribute<InSubGxImg2d>(), out) && inSituOrApart(attribute<InSubGxImg2d>(), out)
               && inSituOrApart(attribute<InSubGyImg2d>(), out);
    };
    return makesGaussian(attribute<InSmoothingStdDev>(), attribute<InGaussianCoverage>())
           && matchSizeAndType(attribute<InSubGxImg2d>(), attribute<InSubGyImg2d>()) && fits(attribute<OutGxGxImg>())
           && fits(attribute<OutGyGyImg>()) && fits(attribute<OutGxGyImg>())
           && noInSitu(attribute<OutGxGxImg>(), attribute<OutGyGyImg>())
           && noInSitu(attribute<OutGxGxImg>(), attribute<OutGxGyImg>())
           && noInSitu(attribute<OutGyGyImg>(), attribute<OutGxGyImg>());
}

processor::RetrievalResult StructureTensor2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const double coverage = value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>();
    const double halfSize = getGaussianHalfSize(static_cast<double>(value<InSmoothingStdDev>()), coverage);
    image::StripMargins margins;
    // Lines farther than the image is high are all the same one; its kernel is folded there.
    margins.startY = std::min(static_cast<unsigned long>(halfSize), value<InSubGxImg2d>()->getSizeY());
    margins.endY = margins.startY + StructureTensor2dImgLvl3::s_nbLinesAtOnce - 1;
    return dispatch<StructureTensor2dImgLvl3>(
        priority, provider, stripsInPlace<InGxKnlYStrip2d>(value<InSubGxImg2d>(), margins),
        stripsInPlace<InGyKnlYStrip2d>(value<InSubGyImg2d>(), margins),
        same<InSmoothingStdDev>(value<InSmoothingStdDev>()), same<InGaussianCoverage>(value<InGaussianCoverage>()),
        strips<OutGxGxYStrip2d>(value<OutGxGxImg>()), strips<OutGyGyYStrip2d>(value<OutGyGyImg>()),
        strips<OutGxGyYStrip2d>(value<OutGxGyImg>()));
}

}}}  // namespace orvik::imaproc::filter
