#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"

#include "frame/util/NumericLimits.h"

#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

double halfRhoOf(unsigned long sizeX, unsigned long sizeY, double rhoStep)
{
    const double halfX = static_cast<double>(sizeX - sizeX / 2), halfY = static_cast<double>(sizeY - sizeY / 2);
    return std::trunc(1.0 + std::sqrt(halfX * halfX + halfY * halfY) / rhoStep);
}

unsigned long accumulatorSizeX(const image::BaseImage& plane, const HoughLinesImgParams& params)
{
    const double given = params.get<HoughLinesImgParams::RhoStep>();
    const double rhoStep = given >= NumericLimits<double>::s_eps ? given : 1.0;
    const double halfRho = halfRhoOf(plane.getSizeX(), plane.getSizeY(), rhoStep), limit = 4611686018427387904.0;  // 2^62
    return 2 * static_cast<unsigned long>(halfRho < limit ? halfRho : limit);
}

bool isCyclic(const HoughLinesImgParams& params)
{
    return params.get<HoughLinesImgParams::ThetaMin>() <= 0.0 && params.get<HoughLinesImgParams::ThetaMax>() >= M_PI;
}

unsigned long accumulatorSizeY(const HoughLinesImgParams& params, const HoughLinesExtractionParams& extraction)
{
    const unsigned long nbThetaBins = params.get<HoughLinesImgParams::NbThetaBins>();
    if (!isCyclic(params) || nbThetaBins == 0)  // of no rows none can go on
        return nbThetaBins;
    return nbThetaBins + 2ul * extraction.get<HoughLinesExtractionParams::PeakDist>();
}

double thetaStepOf(const HoughLinesImgParams& params)
{
    return (params.get<HoughLinesImgParams::ThetaMax>() - params.get<HoughLinesImgParams::ThetaMin>())
           / static_cast<double>(params.get<HoughLinesImgParams::NbThetaBins>());
}

}}}  // namespace orvik::imaproc::fd
