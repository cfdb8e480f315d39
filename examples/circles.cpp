// Lists the circles of a picture: reads a PNG, JPEG or TIFF file, writes a list of circles and the picture with them.

#include "FeatureList.h"
#include "PictureIo.h"
#include "ProgramSupport.h"

#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/Records.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <map>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;
typedef attr::HoughCircle2dPpties Circle;

namespace {

struct Options
{
    unsigned int minRadius = 5, maxRadius = 50;
    std::string kind = "both";
    std::string method = "standard";
    double angle = 0.1;
    double ratio = 0.5;
    double threshold = 0.0;
    double apart = 1.0;
    unsigned int points = std::numeric_limits<unsigned int>::max();
    ListOptions list;
};

const std::map<std::string, attr::eCircleIntensityType> g_kinds = {
    {"dark", attr::eCIT_Outward}, {"bright", attr::eCIT_Inward}, {"both", attr::eCIT_Both}};
const std::map<std::string, attr::eHoughCircles2dAlgoMethod> g_methods = {{"standard", attr::eHCAM_Standard},
                                                                          {"phase", attr::eHCAM_PhaseCoded}};

/// The greatest radius that fits into the picture.
unsigned long largestRadius(const Picture& picture)
{
    return std::min(picture.sizeX, picture.sizeY) / 2;
}

void checkRange(const Options& options)
{
    if (options.minRadius > options.maxRadius)
        throw CLI::ValidationError("--min-radius", std::to_string(options.minRadius) + " is above --max-radius, "
                                                       + std::to_string(options.maxRadius));
}

/// The library narrows radii to the picture. By phases a single one can't be told.
void checkRangeOf(const Picture& picture, const Options& options)
{
    const unsigned long largest = largestRadius(picture);
    if (options.minRadius > largest)
        throw CLI::ValidationError("--min-radius", std::to_string(options.minRadius) + " is above half of the picture, "
                                                       + std::to_string(largest));
    if (options.method == "phase" && std::min<unsigned long>(options.maxRadius, largest) == options.minRadius)
        throw CLI::ValidationError("--method",
                                   "phase needs more than one radius, not " + std::to_string(options.minRadius) + " alone");
}

// Through the processor, not through the function houghCircles2d that does the same in one call: only a processor tells
// its progress, and takes a grey image by all methods.

FeatureList findCircles(const Picture& picture, const Options& options)
{
    const auto circles = processor::createInitialised<imaproc::fd::HoughCircles2dLvl1>();
    circles->set<attr::InOptGreyImg2d>(wrapPicture(picture));
    circles->set<attr::InOptHoughCirclesRadiusRange>(attr::createHoughCirclesRadiusRange(options.minRadius,
                                                                                         options.maxRadius));
    circles->set<attr::InOptHoughCircles2dAlgoMethod>(g_methods.at(options.method));
    circles->set<attr::InOptCircleIntensityType>(g_kinds.at(options.kind));
    circles->set<attr::InOptMaxAngleWithGradDir>(options.angle);
    circles->set<attr::InOptNbMaxPtsPerCircle>(options.points);
    circles->set<attr::InOptAccumIntensityThreshold>(attr::AccumIntensityThreshold::createNode(options.threshold,
                                                                                               options.ratio));
    circles->set<attr::InOptRemoveTooCloseCirclesParams>(attr::RemoveTooCloseCirclesParams::createNode(true, options.apart));
    runToEnd(*circles, "circles", options.list.common);

    const auto found = circles->getStorage<attr::OutPIHoughCircles2dPpties>()->getEntry(PlanIndex());
    FeatureList list = {{"x", "y", "radius", "value"}, {}};
    for (std::size_t i = 0; i < found->size() && i < options.list.max; ++i) {
        const Circle& circle = (*found)[i];
        list.rows.push_back({circle.get<Circle::X>(), circle.get<Circle::Y>(), circle.get<Circle::Radius>(),
                             circle.get<Circle::Value>()});
    }
    return list;
}

/// Pixels of the circles and of crosses on their centres.
std::vector<unsigned char> drawCircles(const Picture& picture, const FeatureList& circles)
{
    const long sizeX = static_cast<long>(picture.sizeX), sizeY = static_cast<long>(picture.sizeY), reach = 2;
    std::vector<unsigned char> mask(picture.sizeX * picture.sizeY, 0);
    const auto mark = [&](double x, double y) {
        const long column = std::lround(x), line = std::lround(y);
        if (column >= 0 && line >= 0 && column < sizeX && line < sizeY)
            mask[static_cast<std::size_t>(line * sizeX + column)] = 255;
    };
    for (const std::vector<double>& circle : circles.rows) {
        const double x = circle[0], y = circle[1], radius = circle[2];
        const long nbSteps = std::lround(8 * radius) + 8;  // no pixel is passed over
        for (long i = 0; i < nbSteps; ++i) {
            const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(nbSteps);
            mark(x + radius * std::cos(angle), y + radius * std::sin(angle));
        }
        for (long step = -reach; step <= reach; ++step) {
            mark(x + static_cast<double>(step), y);
            mark(x, y + static_cast<double>(step));
        }
    }
    return mask;
}

void print(const FeatureList& circles, const Options& options)
{
    std::cout << "circles     " << circles.rows.size() << " listed, at most " << options.list.max << '\n';
    for (const std::vector<double>& circle : circles.rows)
        std::cout << "            (" << circle[0] << ", " << circle[1] << "), radius " << circle[2] << ", value "
                  << circle[3] << '\n';
}

void run(const Options& options)
{
    checkRange(options);
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.list.picture); });
    checkRangeOf(picture, options);
    const FeatureList circles = times.measure("circles", [&] { return findCircles(picture, options); });
    const ListFiles files = times.measure("write", [&] {
        return writeList(options.list, "circles", circles, picture, drawCircles(picture, circles));
    });
    if (options.list.common.quiet)
        return;
    std::cout << "picture     " << options.list.picture << ", " << describe(picture) << '\n'
              << "radii       " << options.minRadius << " to "
              << std::min<unsigned long>(options.maxRadius, largestRadius(picture)) << " pixels, " << options.kind << ", "
              << options.method << " method\n"
              << "threads     " << core::getNbThreads() << '\n';
    print(circles, options);
    std::cout << "time        " << times.toString() << '\n'
              << "written     " << files.list << ", " << files.overlay << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the circles of a PNG, JPEG or TIFF picture, the strongest ones first. Writes NAME-circles.csv, a\n"
                 "line of x, y, radius and value for each, and NAME-circles-overlay.png, the picture in grey with the\n"
                 "circles and their centres in red.",
                 "circles");
    Options options;
    options.list.max = 1000;
    addPicture(app, options.list.picture);
    addNumber(app, "--min-radius", options.minRadius, "smallest radius, 1 to 10000 pixels (default: 5)",
              isWholeNumberFrom(1, 10000), "PIXELS");
    addNumber(app, "--max-radius", options.maxRadius,
              "greatest radius, 1 to 10000 pixels; half of the picture at most (default: 50)", isWholeNumberFrom(1, 10000),
              "PIXELS");
    addChoice(app, "--kind", options.kind, "bright circles, dark ones, or both (default: both)", {"bright", "dark", "both"});
    addChoice(app, "--method", options.method,
              "standard, which tries each radius about each centre, or phase, which reads it from a complex score\n"
              "(default: standard)",
              {"standard", "phase"});
    addNumber(app, "--angle", options.angle,
              "greatest angle between gradient and radius, above 0 to 3.14 radians (default: 0.1)", isNumberFrom(1e-6, 3.14),
              "RADIANS");
    addNumber(app, "--ratio", options.ratio,
              "list circles with at least this share of the greatest score, 0 to 1 (default: 0.5)", isNumberFrom(0, 1),
              "SHARE");
    addNumber(app, "--threshold", options.threshold, "and with at least this score, in grey levels per pixel (default: 0)",
              isNumberFrom(0), "SCORE");
    addNumber(app, "--apart", options.apart,
              "of overlapping circles list the strongest alone: 0 those within one another, 1 those whose centre is in\n"
              "another, 2 all that overlap, up to 100 (default: 1)",
              isNumberFrom(0, 100), "FACTOR");
    addNumber(app, "--points", options.points, "pixels that each ring is thinned to, 1 to 1000000 (default: all)",
              isWholeNumberFrom(1, 1000000), "N");
    addListOptions(app, options.list);
    return runProgram(app, argc, argv, options.list.common, [&] { run(options); });
}
