#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"

#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(GaussianGradient2dImgLvl3)

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
    const BoolResult fits = checkGaussianMargins(strip, m_y.halfSize());
    if (!fits)
        return failure(getObjectName() + ": " + fits.getMessage());
    setBorder<InKnlYStrip2d>(image::nearestBorder2d());

    const unsigned long sizeX = processor::alignedCount(strip.getSizeX(), getRunGranularity());
    m_tile.init(kBlock * (2 * m_y.halfSize() + g_nbLinesAtOnce), eDT_Real64);
    if (value<OutOptGradXYStrip2d>())
        m_smooth.init(eDT_Real64, sizeX, m_x.halfSize());
    if (value<OutOptGradYYStrip2d>())
        m_derivative.init(eDT_Real64, sizeX, m_x.halfSize());
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::filter
