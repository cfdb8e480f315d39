#include "EdgeStages.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace orvik::examples {

namespace attr = orvik::imaproc::attr;

namespace {

// Both stages go through the processors, not through the functions gaussianGradient2dImg and cannyEdges2dImg that do
// the same in one call: only a processor tells its progress.

void computeGradient(Gradient& result, const Picture& picture, double sigma, const CommonOptions& common)
{
    const auto gradient = processor::createInitialised<imaproc::filter::GaussianGradient2dImgLvl1>();
    gradient->set<attr::InImg>(wrapPicture(picture));
    gradient->set<attr::InStdDevX>(static_cast<float>(sigma));
    gradient->set<attr::InStdDevY>(static_cast<float>(sigma));
    runToEnd(*gradient, "gradient", common);
    result.x = gradient->getStorage<attr::OutOptGradXImg>();
    result.y = gradient->getStorage<attr::OutOptGradYImg>();
}

imaproc::ImagePtr detectEdges(const Gradient& gradient, bool viaLabels, const CommonOptions& common)
{
    const auto canny = processor::createInitialised<imaproc::fd::CannyEdges2dImgLvl1>();
    canny->set<attr::InGxGreyImg2d>(gradient.x);
    canny->set<attr::InGyGreyImg2d>(gradient.y);
    canny->set<attr::InCannyThresholds>(attr::CannyThresholds::createNode(gradient.thresholds.low,
                                                                          gradient.thresholds.high));
    canny->set<attr::InOptOptimizationPolicy>(viaLabels ? attr::ePOP_Labels : attr::ePOP_Iterative);
    runToEnd(*canny, "edges", common);
    return canny->getStorage<attr::OutBinImg>();
}

}  // namespace

void addEdgeOptions(CLI::App& app, EdgeOptions& options)
{
    addNumber(app, "--sigma", options.sigma, "standard deviation of the smoothing, 0.1 to 1000 pixels (default: 1)",
              isNumberFrom(0.1, 1000), "PIXELS");
    addNumber(app, "--low", options.low, "weak edges have a gradient above this, in grey levels per pixel", isNumberFrom(0),
              "LEVELS");
    addNumber(app, "--high", options.high,
              "strong edges have one above this; weak edges count when they hang together with strong ones "
              "(default: both thresholds from the picture or volume)",
              isNumberFrom(0), "LEVELS");
}

void checkEdgeOptions(const EdgeOptions& options)
{
    if (options.low && options.high && *options.low > *options.high)
        throw CLI::ValidationError("--low", CLI::detail::to_string(*options.low) + " is above --high, "
                                                + CLI::detail::to_string(*options.high));
}

Gradient findGradient(const Picture& picture, const EdgeOptions& options, const CommonOptions& common, StageTimes& times)
{
    Gradient gradient;
    times.measure("gradient", [&] { computeGradient(gradient, picture, options.sigma, common); });
    gradient.thresholds = times.measure("thresholds", [&] {
        return chooseThresholds(options.low, options.high, {gradient.x, gradient.y});
    });
    return gradient;
}

Edges findEdges(const Picture& picture, const EdgeOptions& options, bool viaLabels, const CommonOptions& common,
                StageTimes& times)
{
    const Gradient gradient = findGradient(picture, options, common, times);
    return {times.measure("edges", [&] { return detectEdges(gradient, viaLabels, common); }), gradient.thresholds};
}

std::string describe(const EdgeThresholds& thresholds)
{
    std::ostringstream text;
    text << "thresholds  low " << thresholds.low << ", high " << thresholds.high << " grey levels per pixel ("
         << thresholds.origin << ")\n";
    return text.str();
}

std::string describe(const EdgeOptions& options, const EdgeThresholds& thresholds)
{
    std::ostringstream text;
    text << "sigma       " << options.sigma << " pixels\n" << describe(thresholds);
    return text.str();
}

std::string describeEdges(const std::vector<unsigned char>& mask)
{
    const auto nbEdges = std::count(mask.begin(), mask.end(), 255);
    const double share = 100.0 * static_cast<double>(nbEdges) / static_cast<double>(mask.size());
    std::ostringstream text;
    text << "edges       " << nbEdges << " of " << mask.size() << " pixels (" << std::setprecision(3) << share << " %)\n";
    return text.str();
}

}  // namespace orvik::examples
