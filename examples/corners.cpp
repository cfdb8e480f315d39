// Lists the corners of a picture: reads a PNG, JPEG or TIFF file, writes a list of points and the picture with them.

#include "PointList.h"
#include "ProgramSupport.h"

#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <sstream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;

namespace {

struct Options
{
    PointOptions points;
    double sigma = 1.0;
    std::string measure = "harris";
    double k = 0.04;
    double threshold = 0.0;
};

// Through the processor, not through the function harrisCorner2d that does the same in one call: only a processor tells
// its progress.

FoundPoints findInPlanes(const imaproc::ConstImagePtr& image, const Options& options)
{
    const auto corners = processor::createInitialised<imaproc::fd::HarrisCorner2dLvl1>();
    corners->set<attr::InImg>(image);
    corners->set<attr::InLocalExtremaConfig>(attr::createLocalExtremaConfig(options.threshold, options.points.list.max));
    corners->set<attr::InOptGradStdDev>(static_cast<float>(options.sigma));
    corners->set<attr::InFeaturesDistX>(options.points.distance);
    corners->set<attr::InFeaturesDistY>(options.points.distance);
    corners->set<attr::InOptCornerDetectionParams2d>(attr::CornerDetectionParams::createNode(
        options.measure == "harris" ? attr::eCRT_Harris : attr::eCRT_MinEigenvalue, static_cast<float>(options.k)));
    runToEnd(*corners, "corners", options.points.list.common);

    std::ostringstream settings;
    settings << "sigma       " << options.sigma << " pixels\nmeasure     " << options.measure;
    if (options.measure == "harris")
        settings << ", k " << options.k;
    settings << "\nthreshold   " << options.threshold << " squared grey levels per pixel\n";
    return {toList(*corners->getStorage<attr::OutPIPixels2d>(), *image), settings.str(),
            "response " + lastKernelOf("orvik::imaproc::fd::HarrisCorner2dImgLvl3") + ", extrema "
                + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema2dLvl3")};
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the corners of a PNG, JPEG or TIFF picture, the strongest ones first. Writes NAME-corners.csv, a\n"
                 "line of x, y and value for each, and NAME-corners-overlay.png, the picture in grey with red crosses.",
                 "corners");
    Options options;
    options.points.list.max = 500;
    addPictureOrVolume(app, options.points.list.picture);
    addNumber(app, "--sigma", options.sigma,
              "standard deviation of the gradient and of its smoothing, 0.1 to 1000 pixels (default: 1)",
              isNumberFrom(0.1, 1000), "PIXELS");
    addChoice(app, "--measure", options.measure, "harris or eigenvalue, the smaller one of the tensor (default: harris)",
              {"harris", "eigenvalue"});
    addNumber(app, "--k", options.k, "constant of the Harris measure, 0 to 0.25 (default: 0.04)", isNumberFrom(0, 0.25),
              "NUMBER");
    addNumber(app, "--threshold", options.threshold,
              "list values of at least this many squared grey levels per pixel: the square root of the Harris\n"
              "measure, or the eigenvalue (default: 0)",
              isNumberFrom(0), "VALUE");
    addPointOptions(app, options.points, "no pixel this near along x and y has a greater value");
    return runProgram(app, argc, argv, options.points.list.common, [&] {
        listPoints(options.points, "corners",
                   {[&](const imaproc::ConstImagePtr& image) { return findInPlanes(image, options); }, nullptr});
    });
}
