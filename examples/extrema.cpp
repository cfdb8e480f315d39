// Lists the local extrema of a picture or volume: reads a PNG, JPEG, TIFF or NIfTI file, writes a list of points and pictures
// with them.

#include "PointList.h"
#include "ProgramSupport.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <limits>
#include <map>
#include <optional>
#include <sstream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;

namespace {

struct Options
{
    PointOptions points;
    std::string kind = "maxima";
    std::optional<double> threshold;
};

const std::map<std::string, attr::eLocalExtremumType> g_kinds = {{"maxima", attr::eLET_Maxima},
                                                                 {"minima", attr::eLET_Minima},
                                                                 {"strict-maxima", attr::eLET_StrictMaxima},
                                                                 {"strict-minima", attr::eLET_StrictMinima}};

Ptr<attr::LocalExtremaConfig> createConfig(const Options& options)
{
    const attr::eLocalExtremumType kind = g_kinds.at(options.kind);
    const double all = attr::isMinima(kind) ? 3.4028235e38 : -3.4028235e38;  // no value of a picture lies beyond
    return attr::LocalExtremaConfig::createNode(kind, options.threshold.value_or(all), options.points.list.max);
}

std::string describe(const Options& options)
{
    std::ostringstream settings;
    settings << "kind        " << options.kind << "\nthreshold   ";
    if (options.threshold)
        settings << *options.threshold << " grey levels\n";
    else
        settings << "none\n";
    return settings.str();
}

// Through the processors, not through the functions extractLocalExtrema2d and extractLocalExtrema3d that do the same in one
// call: only a processor tells its progress.

FoundPoints findInPlanes(const imaproc::ConstImagePtr& image, const Options& options)
{
    const auto extrema = processor::createInitialised<imaproc::fd::ExtractLocalExtrema2dLvl1>();
    extrema->set<attr::InImg>(image);
    extrema->set<attr::InFeaturesDistX>(options.points.distance);
    extrema->set<attr::InFeaturesDistY>(options.points.distance);
    extrema->set<attr::InOptLocalExtremaConfig>(createConfig(options));
    runToEnd(*extrema, "extrema", options.points.list.common);
    return {toList(*extrema->getStorage<attr::OutPIPixels2d>(), *image), describe(options),
            "extrema " + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema2dLvl3")};
}

FoundPoints findInVolume(const imaproc::ConstImagePtr& image, const Options& options)
{
    const auto extrema = processor::createInitialised<imaproc::fd::ExtractLocalExtrema3dLvl1>();
    extrema->set<attr::InImg3d>(image);
    extrema->set<attr::InFeaturesDistX>(options.points.distance);
    extrema->set<attr::InFeaturesDistY>(options.points.distance);
    extrema->set<attr::InFeaturesDistZ>(options.points.getDistanceZ());
    extrema->set<attr::InOptLocalExtremaConfig>(createConfig(options));
    runToEnd(*extrema, "extrema", options.points.list.common);
    return {toList(*extrema->getStorage<attr::OutPIVoxels3d>()->getEntry(PlanIndex())), describe(options),
            "extrema " + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema3dLvl3")};
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the local extrema of a PNG, JPEG or TIFF picture, or of a volume in a NIfTI file or the pages of a\n"
                 "TIFF file, the most extreme ones first. Writes NAME-extrema.csv, a line of x, y (z) and value for each,\n"
                 "and NAME-extrema-overlay.png, the picture in grey with red crosses; of a volume NAME-extrema-slices.png,\n"
                 "three planes through its middle, and NAME-extrema-projections.png, the brightest voxels along each axis.",
                 "extrema");
    Options options;
    options.points.list.max = 1000;
    addPictureOrVolume(app, options.points.list.picture);
    addChoice(app, "--kind", options.kind, "maxima, minima, strict-maxima or strict-minima (default: maxima)",
              {"maxima", "minima", "strict-maxima", "strict-minima"});
    addNumber(app, "--threshold", options.threshold,
              "list maxima of at least, minima of at most this many grey levels (default: all)",
              isNumberFrom(-std::numeric_limits<double>::max()), "LEVELS");
    addPointOptions(app, options.points, "no pixel this near along x and y is more extreme");
    return runProgram(app, argc, argv, options.points.list.common, [&] {
        listPoints(options.points, "extrema",
                   {[&](const imaproc::ConstImagePtr& image) { return findInPlanes(image, options); },
                    [&](const imaproc::ConstImagePtr& image) { return findInVolume(image, options); }});
    });
}
