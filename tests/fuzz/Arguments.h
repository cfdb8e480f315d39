#pragma once

// What the functions are called with: readers that make an argument of the bytes of a scenario, null or odd at times.

#include "Scenario.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/attr/Records.h"

#include <climits>
#include <vector>

namespace orvik::fuzz { namespace {

using namespace imaproc::attr;
using test::kNan;
using test::kPi;

const auto in = [](Scenario& scenario) { return scenario.image(Use::input, 64); };
const auto working = [](Scenario& scenario) { return scenario.image(Use::working, 3); };
const auto out = [](Scenario& scenario) { return scenario.image(Use::result, 32); };
const auto outOrNone = [](Scenario& scenario) { return scenario.image(Use::result, 4); };  // none: it is made

/// A record with these fields; null at times.
template<class Record, class... Fields>
boost::shared_ptr<Record> record(Scenario& scenario, const Fields&... fields)
{
    return scenario.oneIn(32) ? nullptr : Record::createNode(fields...);
}

const auto cannyThresholds = [](Scenario& scenario) {
    const double low = scenario.number("low", {2.0, 30.0, 100.5, -5.0}), high = scenario.number("high", {5.0, 60.0, 255.0});
    return record<CannyThresholds>(scenario, low, high);
};
const auto policy = [](Scenario& scenario) {
    return static_cast<eProcessingOptimizationPolicy>(scenario.number("policy", {0u, 1u}));
};

const auto stdDev = [](Scenario& scenario) {
    const float value = scenario.number("stdDev", {1.0f, 0.5f, 0.1f, 2.0f, 3.7f, 1e-38f});
    scenario.largestStdDev = value > scenario.largestStdDev ? value : scenario.largestStdDev;
    return value;
};
const auto coverage = [](Scenario& scenario) {
    const double value = scenario.number("coverage", {4.0, 1.0, 3.0, 0.5, 10.0});
    // Kernels that are served end soon, so that calls are quick; the others are refused, being beyond 2^20.
    const double halfSize = value * scenario.largestStdDev, most = 40;
    return halfSize > most && halfSize < 1048577 ? most / scenario.largestStdDev : value;
};
const auto coverageRecord = [](Scenario& scenario) { return record<GaussianCoverage>(scenario, coverage(scenario)); };
const auto cornerParams = [](Scenario& scenario) {
    const auto type = static_cast<eCornerResponseType>(scenario.number("response", {1, 0}));
    return record<CornerDetectionParams>(scenario, type, scenario.number("k", {0.04f, 0.25f}));
};

const auto distance = [](Scenario& scenario) { return scenario.number("distance", {1u, 2u, 3u, 10u, 40u, 100u}); };
const auto most = [](Scenario& scenario) { return scenario.number("most", {10ul, 1000ul}); };
const auto threshold = [](Scenario& scenario) { return scenario.number("threshold", {0.5, 2.0, 100.0, 16777217.0, -3e9}); };
const auto extremaConfig = [](Scenario& scenario) {
    const auto type = static_cast<eLocalExtremumType>(scenario.number("type", {0, 1, 2, 3}));
    const double value = threshold(scenario);
    return record<LocalExtremaConfig>(scenario, type, value, most(scenario));
};

/// Of lines from pixels or from gradients.
template<class Params>
boost::shared_ptr<Params> houghBins(Scenario& scenario)
{
    const double step = scenario.number("rhoStep", {1.0, 0.5, 2.5, 10.0});
    const double thetaMin = scenario.number("thetaMin", {0.0, -kPi, kPi / 4});
    const double thetaMax = scenario.number("thetaMax", {kPi, 7.0, 0.5});
    unsigned int nbAngles = scenario.number("nbThetaBins", {180u, 2u, 7u, 90u});
    const float least = scenario.number("pixelThreshold", {0.0f, 90.0f});
    // Accumulators that are served are small; the others are refused for an axis that no int counts.
    const double halfX = static_cast<double>((scenario.sizes().x + 1) / 2), mostBins = 40000;
    const double halfY = static_cast<double>((scenario.sizes().y + 1) / 2);
    const double nbColumns = 2 * std::trunc(1 + std::hypot(halfX, halfY) / (step >= std::ldexp(1, -52) ? step : 1));
    if (nbColumns <= INT_MAX && nbAngles <= INT_MAX && nbAngles * nbColumns > mostBins)
        nbAngles = static_cast<unsigned int>(1 + mostBins / nbColumns);
    scenario.nbRhoBins = nbColumns <= mostBins ? static_cast<unsigned long>(nbColumns) : 1;
    scenario.nbThetaBins = 1 <= nbAngles && nbAngles <= 255 ? nbAngles : 1;
    return record<Params>(scenario, step, thetaMin, thetaMax, nbAngles, least);
}
const auto greyBins = houghBins<HoughLinesImgParams>;
const auto gradientBins = houghBins<HoughLinesGradientImgParams>;
const auto tolerance = [](Scenario& scenario) { return scenario.number("tolerance", {0.1f, 0.5f, 3.2f, 0.0f, -0.1f}); };
const auto houghLines = [](Scenario& scenario) {
    const int type = scenario.number("thresholdType", {1, 0, 2});
    const double value = threshold(scenario);
    const unsigned int distance = scenario.number("peakDist", {10u, 3u, 40u, 200u, 1u << 30});
    return record<HoughLinesExtractionParams>(scenario, type, value, distance);
};
const auto accumulator = [](Scenario& scenario) {
    const image::ImageSizes& sizes = scenario.sizes();
    return scenario.image(Use::result, 4, scenario.among({image::eIBT_Real32, image::eIBT_UInt32, image::eIBT_Int32}),
                          {scenario.nbRhoBins, scenario.nbThetaBins, sizes.z, sizes.c, sizes.t});
};

const auto radii = [](Scenario& scenario) {
    const long min = scenario.number("minRadius", {1l, 2l, 5l, 0l, 30l}),
               max = scenario.number("maxRadius", {6l, 9l, 20l, 3l});
    return record<HoughCirclesRadiusRange>(scenario, min, max);
};
const auto circleType = [](Scenario& scenario) {
    return static_cast<eCircleIntensityType>(scenario.number("circleType", {2, 0, 1}));
};
const auto circleMethod = [](Scenario& scenario) {
    return static_cast<eHoughCircles2dAlgoMethod>(scenario.number("circleMethod", {0, 1}));
};
const auto circleAngle = [](Scenario& scenario) { return scenario.number("circleAngle", {0.1, 0.3, 1.0, 2.0, 0.0}); };
const auto nbPoints = [](Scenario& scenario) { return scenario.number("nbPoints", {4294967295u, 7u, 40u, 0u}); };
const auto circleThreshold = [](Scenario& scenario) {
    const double absolute = scenario.number("absolute", {0.0, 3.0}), ratio = scenario.number("ratio", {0.5, 0.0, 0.9});
    return record<AccumIntensityThreshold>(scenario, absolute, ratio);
};
const auto tooClose = [](Scenario& scenario) {
    return record<RemoveTooCloseCirclesParams>(scenario, !scenario.oneIn(4), scenario.number("factor", {1.0, 2.0, 0.0}));
};
const auto scores = [](Scenario& scenario) { return scenario.image(Use::result, 4, image::eIBT_Real32, scenario.sizes()); };
const auto centers = [](Scenario& scenario) {
    const auto list = Pixels2d::createNode();
    for (unsigned int i = scenario.below(5); i > 0; --i) {
        const double x = scenario.number("x", {3.0, 0.5, 20.49, 64.0}), y = scenario.number("y", {2.0, 7.5, 30.0});
        list->access<Pixels2d::Coll>().push_back(Pixel2d::createNode(x, y, 1.0));
    }
    return scenario.oneIn(32) ? nullptr : list;
};
const auto voxelCenters = [](Scenario& scenario) {
    const auto list = Voxels3d::createNode();
    for (unsigned int i = scenario.below(5); i > 0; --i) {
        const double x = scenario.number("x", {3.0, 0.5, 20.49, 64.0}), y = scenario.number("y", {2.0, 7.5, 30.0}),
                     z = scenario.number("z", {0.0, 1.5, 2.0, -1.0});
        list->access<Voxels3d::Coll>().push_back(Voxel3d::createNode(x, y, z, 1.0));
    }
    return scenario.oneIn(32) ? nullptr : list;
};
/// Of radii that are not narrowed to the volume the great ones take long.
const auto shortRadii = [](Scenario& scenario) {
    const long min = scenario.number("minRadius", {1l, 2l, 0l, 4l}), max = scenario.number("maxRadius", {3l, 6l, 9l, 2l});
    return record<HoughCirclesRadiusRange>(scenario, min, max);
};
const auto nbSpheres = [](Scenario& scenario) { return scenario.number("nbSpheres", {0ul, 3ul}); };
const auto sphereList = [](Scenario& scenario) { return scenario.oneIn(32) ? nullptr : HoughSpheres3dPpties::createNode(); };
const auto drawnSpheres = [](Scenario& scenario) -> ConstPtr<HoughSpheres3dPpties> {
    const auto list = HoughSpheres3dPpties::createNode();
    for (unsigned int i = scenario.below(9); i > 0; --i) {
        const double x = scenario.number("x", {3.0, 0.5, 64.0}), y = scenario.number("y", {2.0, 7.5, 30.0});
        const double z = scenario.number("z", {0.0, 1.5, 9.0}), radius = scenario.number("radius", {0.0, 2.0, 5.5, 30.0});
        list->access<HoughSpheres3dPpties::Coll>().push_back(HoughSphere3dPpties::createNode(x, y, z, radius, 1.0));
    }
    return scenario.oneIn(32) ? nullptr : list;
};
const auto circleList = [](Scenario& scenario) { return scenario.oneIn(32) ? nullptr : HoughCircles2dPpties::createNode(); };

}  // namespace
}  // namespace orvik::fuzz
