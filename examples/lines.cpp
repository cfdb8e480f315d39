// Lists the straight lines of a picture: its gradient, its edges, and the lines that most edge pixels lie on. Reads a
// PNG, JPEG or TIFF file, writes a list of lines and the picture with them.

#include "EdgeStages.h"
#include "FeatureList.h"
#include "PictureIo.h"

#include "Processor/HoughLines2d/HoughLines2dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <iostream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;

namespace {

struct Options
{
    EdgeOptions edges;
    double rhoStep = 1.0;
    unsigned int angles = 180;
    double threshold = 0.5;
    unsigned int distance = 10;
    ListOptions list;
};

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

// Through the processor, not through the function houghLines2d that does the same in one call: only a processor tells
// its progress.

FeatureList findLines(const imaproc::ImagePtr& edges, const Options& options)
{
    const auto lines = processor::createInitialised<imaproc::fd::HoughLines2dLvl1>();
    lines->set<attr::InGreyImg2d>(edges);
    lines->set<attr::InOptHoughLinesImgParams>(attr::HoughLinesImgParams::createNode(options.rhoStep, 0.0, M_PI,
                                                                                     options.angles, 0.0f));
    lines->set<attr::InOptHoughLinesExtractionParams>(
        attr::HoughLinesExtractionParams::createNode(attr::eHLTT_Ratio, options.threshold, options.distance));
    runToEnd(*lines, "lines", options.list.common);

    const auto found = lines->getStorage<attr::OutPIHoughLines2dPpties>()->getEntry(PlanIndex());
    FeatureList list = {{"rho", "theta", "votes"}, {}};
    for (std::size_t i = 0; i < found->size() && i < options.list.max; ++i) {
        const attr::HoughLine2dPpties& line = (*found)[i];
        list.rows.push_back({line.get<attr::HoughLine2dPpties::Rho>(), line.get<attr::HoughLine2dPpties::Theta>(),
                             line.get<attr::HoughLine2dPpties::AccumulatorValue>()});
    }
    return list;
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
    const Edges edges = findEdges(picture, options.edges, false, options.list.common, times);
    const FeatureList lines = times.measure("lines", [&] { return findLines(edges.image, options); });
    const ListFiles files =
        times.measure("write", [&] { return writeList(options.list, "lines", lines, picture, drawLines(picture, lines)); });
    if (options.list.common.quiet)
        return;
    std::cout << "picture     " << options.list.picture << ", " << describe(picture) << '\n'
              << describe(options.edges, edges.thresholds) << "bins        " << options.rhoStep << " pixels, "
              << options.angles << " angles\n"
              << "threshold   " << options.threshold << " of the most votes, none higher within " << options.distance
              << " bins\n"
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     gradient " << lastKernelOf("orvik::imaproc::filter::GaussianGradient2dImgLvl3") << ", edges "
              << lastKernelOf("orvik::imaproc::fd::CannyEdges2dImgLvl3") << ", votes "
              << lastKernelOf("orvik::imaproc::fd::HoughLines2dImgLvl3") << '\n'
              << describeEdges(toMask(*edges.image)) << "lines       " << lines.rows.size() << " listed, at most "
              << options.list.max << '\n'
              << "time        " << times.toString() << '\n'
              << "written     " << files.list << ", " << files.overlay << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the straight lines of a PNG, JPEG or TIFF picture, those that most edge pixels lie on first.\n"
                 "Writes NAME-lines.csv, a line of rho, theta and votes for each, and NAME-lines-overlay.png, the\n"
                 "picture in grey with the lines in red: x * cos(theta) + y * sin(theta) = rho, in pixels and radians.",
                 "lines");
    Options options;
    options.list.max = 50;
    addPicture(app, options.list.picture);
    addEdgeOptions(app, options.edges);
    addNumber(app, "--rho-step", options.rhoStep, "width of a bin of distances, 0.01 to 1000 pixels (default: 1)",
              isNumberFrom(0.01, 1000), "PIXELS");
    addNumber(app, "--angles", options.angles, "number of angles over half a turn, 1 to 36000 (default: 180)",
              isWholeNumberFrom(1, 36000), "N");
    addNumber(app, "--threshold", options.threshold,
              "list lines with at least this share of the votes of the strongest one, 0 to 1 (default: 0.5)",
              isNumberFrom(0, 1), "SHARE");
    addNumber(app, "--distance", options.distance,
              "no bin this near has more votes, along distances and along angles, 0 to 10000 and below --angles\n"
              "(default: 10)",
              isWholeNumberFrom(0, 10000), "BINS");
    addListOptions(app, options.list);
    return runProgram(app, argc, argv, options.list.common, [&] { run(options); });
}
