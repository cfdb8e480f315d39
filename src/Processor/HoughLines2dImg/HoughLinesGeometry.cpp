#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"

#include "frame/image/Strips.h"
#include "frame/util/NumericLimits.h"

#include <cmath>
#include <limits>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

double halfRhoOf(unsigned long sizeX, unsigned long sizeY, double rhoStep)
{
    const double halfX = static_cast<double>(sizeX - sizeX / 2), halfY = static_cast<double>(sizeY - sizeY / 2);
    return std::trunc(1.0 + std::sqrt(halfX * halfX + halfY * halfY) / rhoStep);
}

template<class Params>
unsigned long accumulatorSizeX(const image::BaseImage& plane, const Params& params)
{
    const double given = params.template get<typename Params::RhoStep>();
    const double rhoStep = given >= NumericLimits<double>::s_eps ? given : 1.0;
    const double halfRho = halfRhoOf(plane.getSizeX(), plane.getSizeY(), rhoStep), limit = 4611686018427387904.0;  // 2^62
    return 2 * static_cast<unsigned long>(halfRho < limit ? halfRho : limit);
}

double periodOf(const HoughLinesImgParams&)
{
    return M_PI;
}

double periodOf(const HoughLinesGradientImgParams&)
{
    return 2 * M_PI;
}

bool isCyclic(const HoughLinesImgParams& params)
{
    return params.get<HoughLinesImgParams::ThetaMin>() <= 0.0 && params.get<HoughLinesImgParams::ThetaMax>() >= M_PI;
}

bool isCyclic(const HoughLinesGradientImgParams& params)
{
    typedef HoughLinesGradientImgParams Params;
    return params.get<Params::ThetaMin>() <= -M_PI && params.get<Params::ThetaMax>() >= M_PI;
}

template<class Params>
unsigned long accumulatorSizeY(const Params& params, const HoughLinesExtractionParams& extraction)
{
    const unsigned long nbThetaBins = nbAnglesOf(params);
    if (!isCyclic(params) || nbThetaBins == 0)  // of no rows none can go on
        return nbThetaBins;
    return nbThetaBins + 2ul * extraction.get<HoughLinesExtractionParams::PeakDist>();
}

template<class Params>
double thetaStepOf(const Params& params)
{
    return (params.template get<typename Params::ThetaMax>() - params.template get<typename Params::ThetaMin>())
           / static_cast<double>(nbAnglesOf(params));
}

template<class Params>
BoolResult HoughLinesTables::init(const std::string& who, const Params& params, const image::BaseImageYStrip2d& strip,
                                  const image::BaseImage& accumulator)
{
    nbRows = nbAnglesOf(params);
    if (accumulator.getSizeY() < nbRows)
        return failure(who + ": the accumulator has " + std::to_string(accumulator.getSizeY()) + " rows for "
                       + std::to_string(nbRows) + " angles");
    const double rhoStep = params.template get<typename Params::RhoStep>();
    const double thetaMin = params.template get<typename Params::ThetaMin>(), thetaStep = thetaStepOf(params);
    const double halfRho = halfRhoOf(strip.getSizeX(), strip.getImageSizeY(), rhoStep);
    centre = rhoStep > 0.0 ? halfRho : std::numeric_limits<double>::quiet_NaN();
    cosines.resize(nbRows);
    sines.resize(nbRows);
    for (unsigned long t = 0; t < nbRows; ++t) {
        double sine, cosine;
        sincos(static_cast<double>(t) * thetaStep + thetaMin, &sine, &cosine);
        cosines[t] = static_cast<float>(cosine / rhoStep);
        sines[t] = static_cast<float>(sine / rhoStep);
    }
    firstRow = nbRows * strip.getStripStartOffsetY() / strip.getImageSizeY();
    return success();
}

#define ORVIK_LINES_GEOMETRY(Params) \
    template unsigned long accumulatorSizeX(const image::BaseImage&, const Params&); \
    template unsigned long accumulatorSizeY(const Params&, const HoughLinesExtractionParams&); \
    template double thetaStepOf(const Params&); \
    template BoolResult HoughLinesTables::init(const std::string&, const Params&, const image::BaseImageYStrip2d&, \
                                               const image::BaseImage&);
ORVIK_LINES_GEOMETRY(HoughLinesImgParams)
ORVIK_LINES_GEOMETRY(HoughLinesGradientImgParams)
#undef ORVIK_LINES_GEOMETRY

}}}  // namespace orvik::imaproc::fd
