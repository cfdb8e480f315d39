#pragma once

// Lines from their definition, given the votes.

#include "FamilyShapes.h"
#include "GaussianFormula.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"

namespace orvik::test {

/// Bins on either side of rho 0.
inline double halfRho(const BaseImage& plane, double rhoStep)
{
    const double hx = std::ceil(0.5 * static_cast<double>(plane.getSizeX()));
    const double hy = std::ceil(0.5 * static_cast<double>(plane.getSizeY()));
    return std::trunc(1.0 + std::sqrt(hx * hx + hy * hy) / rhoStep);
}

inline unsigned long columnsOf(const BaseImage& plane, double rhoStep)
{
    return 2 * static_cast<unsigned long>(halfRho(plane, rhoStep));
}

/// `period` is the angle after which lines come again.
template<class Params>
Numbers expectedLines(const BaseImage& plane, const ImagePtr& accumulator, const Params& params,
                      const HoughLinesExtractionParams& extraction, bool isCyclic, double period)
{
    typedef HoughLinesExtractionParams Extraction;
    const double rhoStep = params.template get<typename Params::RhoStep>(),
                 thetaMin = params.template get<typename Params::ThetaMin>();
    const double nbAngles = params.template get<typename Params::NbThetaBins>(),
                 thetaStep = (params.template get<typename Params::ThetaMax>() - thetaMin) / nbAngles;
    const unsigned int dist = extraction.get<Extraction::PeakDist>();
    double threshold = extraction.get<Extraction::Threshold>();
    Numbers bins = planeOf(*accumulator).samples;
    std::sort(bins.begin(), bins.end());
    if (extraction.get<Extraction::ThresholdType>() == eHLTT_Ratio)
        threshold *= bins.back();
    else if (extraction.get<Extraction::ThresholdType>() == eHLTT_Quantile)
        threshold = bins[static_cast<std::size_t>(
            std::max(0.0, std::ceil(std::min(threshold, 1.0) * static_cast<double>(bins.size())) - 1))];
    const double centreX = static_cast<double>(plane.getSizeX() / 2), centreY = static_cast<double>(plane.getSizeY() / 2);
    const double halfRho = static_cast<double>(accumulator->getSizeX() / 2);
    const auto peaks =
        imaproc::fd::extractLocalExtrema2d(accumulator, dist, dist, createLocalExtremaConfig(eLET_Maxima, threshold));
    Numbers lines = {0};
    for (std::size_t i = 0; i < peaks->size(); ++i) {
        double x = (*peaks)[i].get<Pixel2d::X>(), y = (*peaks)[i].get<Pixel2d::Y>();
        if (isCyclic && (y < dist || y >= dist + nbAngles))
            continue;
        const bool mirrored = isCyclic && y >= nbAngles;
        y -= mirrored ? nbAngles : 0;
        x = mirrored ? 2 * halfRho - 1 - x : x;
        const double angle = y * thetaStep + thetaMin, theta = isCyclic ? std::fmod(angle, period) : angle;
        append(lines, {rhoStep * (x - halfRho) + centreX * std::cos(theta) + centreY * std::sin(theta), theta,
                       (*peaks)[i].get<Pixel2d::Value>()});
        ++lines[0];
    }
    return lines;
}

}  // namespace orvik::test
