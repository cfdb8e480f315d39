#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "GaussianGradient2dImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(GaussianGradient2dImgLvl3)
ORVIK_REGISTER_KERNELS(GaussianGradient2dImgLvl3, AllKernelTypes, core::eIS_Generic)

GaussianGradient2dImgLvl3::GaussianGradient2dImgLvl3() = default;
GaussianGradient2dImgLvl3::~GaussianGradient2dImgLvl3() = default;

processor::RulePtr GaussianGradient2dImgLvl3::createRule() const
{
    return matchSize(attribute<InKnlYStrip2d>(), attribute<OutOptGradXYStrip2d>())
           && matchSize(attribute<InKnlYStrip2d>(), attribute<OutOptGradYYStrip2d>());
}

processor::StageResult GaussianGradient2dImgLvl3::preProcess()
{
    const image::InputImageYStrip2dWithKernel& strip = *value<InKnlYStrip2d>();
    const double coverage = value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>();
    m_x = makeGaussianWeights(value<InStdDevX>(), coverage, strip.getSizeX());
    m_y = makeGaussianWeights(value<InStdDevY>(), coverage, strip.getImageSizeY());
    const image::StripMargins& margins = strip.getMargins();
    if (margins.startY != m_y.halfSize() || margins.endY != m_y.halfSize() + s_nbLinesAtOnce - 1)
        return processor::StageResult(processor::eSRT_Failed,
                                      getObjectName() + ": the margins of the strip do not fit the kernel, half-size "
                                          + std::to_string(m_y.halfSize()));
    borderParser<InKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(image::nearestBorder2d());

    const unsigned long vector = 8;  // doubles of the widest set: column 0 is aligned like the line
    m_startX = processor::alignedCount(m_x.halfSize(), vector);
    const unsigned long lineSize =
        m_startX + processor::alignedCount(strip.getSizeX(), getRunGranularity()) + m_x.halfSize();
    m_tile.init(kBlock * (margins.startY + 1 + margins.endY), eDT_Real64);
    if (value<OutOptGradXYStrip2d>())
        m_smooth.init(eDT_Real64, lineSize, s_nbLinesAtOnce);
    if (value<OutOptGradYYStrip2d>())
        m_derivative.init(eDT_Real64, lineSize, s_nbLinesAtOnce);
    return processor::StageResult(processor::eSRT_Done);
}

}}}  // namespace orvik::imaproc::filter
