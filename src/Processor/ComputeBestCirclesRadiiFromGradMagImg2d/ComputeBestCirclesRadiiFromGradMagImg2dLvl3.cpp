#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl3.h"

#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dKernel.h"

#include "Processor/StripMarginsCheck.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ComputeBestCirclesRadiiFromGradMagImg2dLvl3)

processor::StageResult ComputeBestCirclesRadiiFromGradMagImg2dLvl3::preProcess()
{
    const unsigned long reach =
        static_cast<unsigned long>(value<InHoughCirclesRadiusRange>()->get<HoughCirclesRadiusRange::MaxRadius>());
    const BoolResult fits = checkMargins(getObjectName(), reach, value<InGxKnlYStrip2d>(), value<InGyKnlYStrip2d>());
    if (!fits)
        return fits;
    setBorder<InGxKnlYStrip2d>(image::valuedBorder2d(0.0));
    setBorder<InGyKnlYStrip2d>(image::valuedBorder2d(0.0));
    auto& circles = value<OutHoughCircles2dPpties>()->access<HoughCircles2dPpties::Coll>().accessNodes();
    circles.assign(value<InHoughCircles2dCenters>()->size(), nullptr);
    m_scores = boost::make_shared<RadiusScores>();
    return circles.empty()
               ? processor::StageResult(processor::eSRT_Done)
               : processor::StageResult(m_scores->init(*value<InHoughCirclesKernelXY>(), *value<InHoughCirclesRadiusRange>(),
                                                       value<InGxKnlYStrip2d>()->getSizeX()));
}

}}}  // namespace orvik::imaproc::fd
