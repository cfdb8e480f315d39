// Lists the local extrema of a picture: reads a PNG, JPEG or TIFF file, writes a list of points and the picture with them.

#include "PictureIo.h"
#include "PointList.h"
#include "ProgramSupport.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"

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

// Through the processor, not through the function extractLocalExtrema2d that does the same in one call: only a processor
// tells its progress.

FoundPoints findExtrema(const Picture& picture, const Options& options)
{
    const attr::eLocalExtremumType kind = g_kinds.at(options.kind);
    const double all = attr::isMinima(kind) ? 3.4028235e38 : -3.4028235e38;  // no value of a picture lies beyond
    const auto extrema = processor::createInitialised<imaproc::fd::ExtractLocalExtrema2dLvl1>();
    extrema->set<attr::InImg>(wrapPicture(picture));
    extrema->set<attr::InFeaturesDistX>(options.points.distance);
    extrema->set<attr::InFeaturesDistY>(options.points.distance);
    extrema->set<attr::InOptLocalExtremaConfig>(attr::LocalExtremaConfig::createNode(kind, options.threshold.value_or(all),
                                                                                     options.points.list.max));
    runToEnd(*extrema, "extrema", options.points.list.common);

    std::ostringstream settings;
    settings << "kind        " << options.kind << "\nthreshold   ";
    if (options.threshold)
        settings << *options.threshold << " grey levels\n";
    else
        settings << "none\n";
    return {extrema->getStorage<attr::OutPIPixels2d>()->getEntry(PlanIndex()), settings.str(),
            "extrema " + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema2dLvl3")};
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the local extrema of a PNG, JPEG or TIFF picture, the most extreme ones first. Writes\n"
                 "NAME-extrema.csv, a line of x, y and value for each, and NAME-extrema-overlay.png, the picture in grey\n"
                 "with red crosses.",
                 "extrema");
    Options options;
    options.points.list.max = 1000;
    addPicture(app, options.points.list.picture);
    addChoice(app, "--kind", options.kind, "maxima, minima, strict-maxima or strict-minima (default: maxima)",
              {"maxima", "minima", "strict-maxima", "strict-minima"});
    addNumber(app, "--threshold", options.threshold,
              "list maxima of at least, minima of at most this many grey levels (default: all)",
              isNumberFrom(-std::numeric_limits<double>::max()), "LEVELS");
    addPointOptions(app, options.points, "no pixel this near along x and y is more extreme");
    return runProgram(app, argc, argv, options.points.list.common, [&] {
        listPoints(options.points, "extrema", [&](const Picture& picture) { return findExtrema(picture, options); });
    });
}
