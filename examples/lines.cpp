// Lists the straight lines of a picture: its gradient, its edges, and the lines that most edge pixels lie on; or, without
// edges, the lines that most of the gradient is across. Reads a PNG, JPEG or TIFF file, writes a list of lines and the
// picture with them.

#include "EdgeStages.h"
#include "FeatureList.h"
#include "PictureIo.h"

#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <iostream>
#include <sstream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;

namespace {

struct Options
{
    EdgeOptions edges;
    bool gradient = false;
    double tolerance = 0.1;
    double thetaMin = 0.0, thetaMax = M_PI;
    double rhoStep = 1.0;
    unsigned int angles = 180;
    double threshold = 0.5;
    unsigned int distance = 10;
    ListOptions list;
};

/// Sides that rise in opposite directions are two lines, so angles cover a whole turn where nothing else was said.
void completeOptions(const CLI::App& app, Options& options)
{
    if (options.gradient && app.count("--theta-min") + app.count("--theta-max") == 0)
        options.thetaMin = -M_PI;
    if (options.gradient && app.count("--angles") == 0)
        options.angles = 360;
    if (options.thetaMin >= options.thetaMax)
        throw CLI::ValidationError("--theta-min", CLI::detail::to_string(options.thetaMin) + " is not below --theta-max, "
                                                      + CLI::detail::to_string(options.thetaMax));
}

/// Angles go round: within as many as there are, every bin meets itself again and would hinder itself.
void checkDistance(const Options& options)
{
    if (options.distance >= options.angles)
        throw CLI::ValidationError("--distance", std::to_string(options.distance) + " is not below --angles, "
                                                     + std::to_string(options.angles));
}

/// Up to 4 GiB of votes. Systems may grant more than they have and end the program when it is used.
void checkNumberOfBins(const Picture& picture, const Options& options)
{
    const double diagonal = std::hypot(static_cast<double>(picture.sizeX), static_cast<double>(picture.sizeY));
    const double nbAngles = options.angles + 2.0 * options.distance, most = 1073741824.0;
    if (diagonal / options.rhoStep * nbAngles > most)
        throw CLI::ValidationError("--rho-step", CLI::detail::to_string(options.rhoStep) + " with --angles "
                                                     + std::to_string(options.angles) + " and --distance "
                                                     + std::to_string(options.distance)
                                                     + " gives more than a thousand million bins");
}

// Through the processors, not through the functions houghLines2d and houghLinesGradient2d that do the same in one call: only a
// processor tells its progress.

template<class Params>
boost::shared_ptr<Params> paramsOf(const Options& options, double lowest)
{
    return Params::createNode(options.rhoStep, options.thetaMin, options.thetaMax, options.angles,
                              static_cast<float>(lowest));
}

template<class LinesProcessor>
FeatureList listLines(LinesProcessor& lines, const Options& options)
{
    lines.template set<attr::InOptHoughLinesExtractionParams>(
        attr::HoughLinesExtractionParams::createNode(attr::eHLTT_Ratio, options.threshold, options.distance));
    runToEnd(lines, "lines", options.list.common);

    const auto found = lines.template getStorage<attr::OutPIHoughLines2dPpties>()->getEntry(PlanIndex());
    FeatureList list = {{"rho", "theta", "votes"}, {}};
    for (std::size_t i = 0; i < found->size() && i < options.list.max; ++i) {
        const attr::HoughLine2dPpties& line = (*found)[i];
        list.rows.push_back({line.get<attr::HoughLine2dPpties::Rho>(), line.get<attr::HoughLine2dPpties::Theta>(),
                             line.get<attr::HoughLine2dPpties::AccumulatorValue>()});
    }
    return list;
}

struct Found
{
    FeatureList lines;
    std::string report;   // on what was looked at
    std::string kernels;  // that ran after those of the gradient
};

Found findAlongEdges(const Picture& picture, const Options& options, StageTimes& times)
{
    const Edges edges = findEdges(picture, options.edges, false, options.list.common, times);
    Found found;
    found.lines = times.measure("lines", [&] {
        const auto lines = processor::createInitialised<imaproc::fd::HoughLines2dLvl1>();
        lines->set<attr::InGreyImg2d>(edges.image);
        lines->set<attr::InOptHoughLinesImgParams>(paramsOf<attr::HoughLinesImgParams>(options, 0.0));
        return listLines(*lines, options);
    });
    found.report = describe(options.edges, edges.thresholds) + describeEdges(toMask(*edges.image));
    found.kernels = "edges " + lastKernelOf("orvik::imaproc::fd::CannyEdges2dImgLvl3") + ", votes "
                    + lastKernelOf("orvik::imaproc::fd::HoughLines2dImgLvl3");
    return found;
}

Found findAcrossGradient(const Picture& picture, const Options& options, StageTimes& times)
{
    const Gradient gradient = findGradient(picture, options.edges, options.list.common, times);
    Found found;
    found.lines = times.measure("lines", [&] {
        const auto lines = processor::createInitialised<imaproc::fd::HoughLinesGradient2dLvl1>();
        lines->set<attr::InGxGreyImg2d>(gradient.x);
        lines->set<attr::InGyGreyImg2d>(gradient.y);
        lines->set<attr::InOptHoughLinesOrientationTolerance>(static_cast<float>(options.tolerance));
        lines->set<attr::InOptHoughLinesGradientImgParams>(
            paramsOf<attr::HoughLinesGradientImgParams>(options, gradient.thresholds.low));
        return listLines(*lines, options);
    });
    std::ostringstream report;
    report << describe(options.edges, gradient.thresholds) << "voters      gradients above low, for angles within "
           << options.tolerance << " radians of theirs\n";
    found.report = report.str();
    found.kernels = "votes " + lastKernelOf("orvik::imaproc::fd::HoughLinesGradient2dImgLvl3");
    return found;
}

/// The pixels next to the lines, one for each step along the axis that a line is nearer to.
std::vector<unsigned char> drawLines(const Picture& picture, const FeatureList& lines)
{
    const long sizeX = static_cast<long>(picture.sizeX), sizeY = static_cast<long>(picture.sizeY);
    std::vector<unsigned char> mask(picture.sizeX * picture.sizeY, 0);
    for (const std::vector<double>& line : lines.rows) {
        const double rho = line[0], cosine = std::cos(line[1]), sine = std::sin(line[1]);
        const bool steep = std::fabs(cosine) > std::fabs(sine);
        for (long i = 0; i < (steep ? sizeY : sizeX); ++i) {
            const double at = static_cast<double>(i);
            const long j = std::lround(steep ? (rho - at * sine) / cosine : (rho - at * cosine) / sine);
            const long x = steep ? j : i, y = steep ? i : j;
            if (x >= 0 && y >= 0 && x < sizeX && y < sizeY)
                mask[static_cast<std::size_t>(y * sizeX + x)] = 255;
        }
    }
    return mask;
}

void run(const Options& options)
{
    checkEdgeOptions(options.edges);
    checkDistance(options);
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.list.picture); });
    checkNumberOfBins(picture, options);
    const Found found = options.gradient ? findAcrossGradient(picture, options, times)
                                         : findAlongEdges(picture, options, times);
    const FeatureList& lines = found.lines;
    const ListFiles files =
        times.measure("write", [&] { return writeList(options.list, "lines", lines, picture, drawLines(picture, lines)); });
    if (options.list.common.quiet)
        return;
    std::cout << "picture     " << options.list.picture << ", " << describe(picture) << '\n'
              << found.report << "bins        " << options.rhoStep << " pixels, " << options.angles << " angles from "
              << options.thetaMin << " to " << options.thetaMax << " radians\n"
              << "threshold   " << options.threshold << " of the most votes, none higher within " << options.distance
              << " bins\n"
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     gradient " << lastKernelOf("orvik::imaproc::filter::GaussianGradient2dImgLvl3") << ", "
              << found.kernels << '\n'
              << "lines       " << lines.rows.size() << " listed, at most " << options.list.max << '\n'
              << "time        " << times.toString() << '\n'
              << "written     " << files.list << ", " << files.overlay << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the straight lines of a PNG, JPEG or TIFF picture, those that most edge pixels lie on first, or\n"
                 "that most of the gradient is across.\n"
                 "Writes NAME-lines.csv, a line of rho, theta and votes for each, and NAME-lines-overlay.png, the\n"
                 "picture in grey with the lines in red: x * cos(theta) + y * sin(theta) = rho, in pixels and radians.",
                 "lines");
    Options options;
    options.list.max = 50;
    addPicture(app, options.list.picture);
    addEdgeOptions(app, options.edges);
    CLI::Option* const gradient =
        app.add_flag("--gradient", options.gradient,
                     "no edges: gradients above --low vote for the lines across them, with their magnitude; the two\n"
                     "sides of a bar are two lines, theta points to where it is brighter");
    addNumber(app, "--tolerance", options.tolerance,
              "with --gradient: greatest angle between a gradient and theta, 0 to 3.14 radians (default: 0.1)",
              isNumberFrom(0, 3.14), "RADIANS");
    app.get_option("--tolerance")->needs(gradient);
    addNumber(app, "--theta-min", options.thetaMin,
              "first angle of lines, -7 to 7 radians (default: 0, with --gradient and no --theta-max -3.14159)",
              isNumberFrom(-7, 7), "RADIANS");
    addNumber(app, "--theta-max", options.thetaMax, "end of the angles, -7 to 7 radians (default: 3.14159)",
              isNumberFrom(-7, 7), "RADIANS");
    addNumber(app, "--rho-step", options.rhoStep, "width of a bin of distances, 0.01 to 1000 pixels (default: 1)",
              isNumberFrom(0.01, 1000), "PIXELS");
    addNumber(app, "--angles", options.angles, "number of angles, 1 to 36000 (default: 180, with --gradient 360)",
              isWholeNumberFrom(1, 36000), "N");
    addNumber(app, "--threshold", options.threshold,
              "list lines with at least this share of the votes of the strongest one, 0 to 1 (default: 0.5)",
              isNumberFrom(0, 1), "SHARE");
    addNumber(app, "--distance", options.distance,
              "no bin this near has more votes, along distances and along angles, 0 to 10000 and below --angles\n"
              "(default: 10)",
              isWholeNumberFrom(0, 10000), "BINS");
    addListOptions(app, options.list);
    return runProgram(app, argc, argv, options.list.common, [&] {
        completeOptions(app, options);
        run(options);
    });
}
