// Lists the circles of a picture: reads a PNG, JPEG or TIFF file, writes a list of circles and the picture with them.

#include "FeatureList.h"
#include "PictureIo.h"
#include "ProgramSupport.h"
#include "RoundOptions.h"

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
    RoundOptions round;
    std::string method = "standard";
    unsigned int points = std::numeric_limits<unsigned int>::max();
    ListOptions list;
};

const std::map<std::string, attr::eHoughCircles2dAlgoMethod> g_methods = {{"standard", attr::eHCAM_Standard},
                                                                          {"phase", attr::eHCAM_PhaseCoded}};

/// The greatest radius that fits into the picture.
unsigned long largestRadius(const Picture& picture)
{
    return std::min(picture.sizeX, picture.sizeY) / 2;
}

/// By phases a single radius can't be told.
void checkMethod(const Picture& picture, const Options& options)
{
    const RoundOptions& round = options.round;
    if (options.method == "phase" && std::min<unsigned long>(round.maxRadius, largestRadius(picture)) == round.minRadius)
        throw CLI::ValidationError("--method",
                                   "phase needs more than one radius, not " + std::to_string(round.minRadius) + " alone");
}

// Through the processor, not through the function houghCircles2d that does the same in one call: only a processor tells
// its progress, and takes a grey image by all methods.

FeatureList findCircles(const Picture& picture, const Options& options)
{
    const auto circles = processor::createInitialised<imaproc::fd::HoughCircles2dLvl1>();
    circles->set<attr::InOptGreyImg2d>(wrapPicture(picture));
    circles->set<attr::InOptHoughCirclesRadiusRange>(options.round.createRange());
    circles->set<attr::InOptHoughCircles2dAlgoMethod>(g_methods.at(options.method));
    circles->set<attr::InOptCircleIntensityType>(options.round.getKind());
    circles->set<attr::InOptMaxAngleWithGradDir>(options.round.angle);
    circles->set<attr::InOptNbMaxPtsPerCircle>(options.points);
    circles->set<attr::InOptAccumIntensityThreshold>(options.round.createThreshold());
    circles->set<attr::InOptRemoveTooCloseCirclesParams>(options.round.createRemoval());
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
    checkRange(options.round);
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.list.picture); });
    checkRangeOf(options.round, largestRadius(picture), "picture");
    checkMethod(picture, options);
    const FeatureList circles = times.measure("circles", [&] { return findCircles(picture, options); });
    const ListFiles files = times.measure("write", [&] {
        return writeList(options.list, "circles", circles, picture, drawCircles(picture, circles));
    });
    if (options.list.common.quiet)
        return;
    std::cout << "picture     " << options.list.picture << ", " << describe(picture) << '\n'
              << "radii       " << describeRange(options.round, largestRadius(picture), "pixels") << ", " << options.method
              << " method\n"
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
    addRoundOptions(app, options.round, "circles", "pixels");
    addChoice(app, "--method", options.method,
              "standard, which tries each radius about each centre, or phase, which reads it from a complex score\n"
              "(default: standard)",
              {"standard", "phase"});
    addNumber(app, "--points", options.points, "pixels that each ring is thinned to, 1 to 1000000 (default: all)",
              isWholeNumberFrom(1, 1000000), "N");
    addListOptions(app, options.list);
    return runProgram(app, argc, argv, options.list.common, [&] { run(options); });
}
