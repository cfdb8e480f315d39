// Lists the corners of a picture or volume: reads a PNG, JPEG, TIFF or NIfTI file, writes a list of points and pictures with
// them.

#include "PointList.h"
#include "ProgramSupport.h"

#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner3d/HarrisCorner3dLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <optional>
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
    std::optional<double> k;  ///< of planes 0.04, of volumes 0.005
    double threshold = 0.0;
};

Ptr<attr::CornerDetectionParams> createParameters(const Options& options, double k)
{
    const attr::eCornerResponseType measure = options.measure == "harris" ? attr::eCRT_Harris : attr::eCRT_MinEigenvalue;
    return attr::CornerDetectionParams::createNode(measure, static_cast<float>(k));
}

std::string describe(const Options& options, double k, const std::string& unit)
{
    std::ostringstream settings;
    settings << "sigma       " << options.sigma << ' ' << unit << "s\nmeasure     " << options.measure;
    if (options.measure == "harris")
        settings << ", k " << k;
    settings << "\nthreshold   " << options.threshold << " squared grey levels per " << unit << '\n';
    return settings.str();
}

// Through the processors, not through the functions harrisCorner2d and harrisCorner3d that do the same in one call: only a
// processor tells its progress.

FoundPoints findInPlanes(const imaproc::ConstImagePtr& image, const Options& options)
{
    const double k = options.k.value_or(0.04);
    const auto corners = processor::createInitialised<imaproc::fd::HarrisCorner2dLvl1>();
    corners->set<attr::InImg>(image);
    corners->set<attr::InLocalExtremaConfig>(attr::createLocalExtremaConfig(options.threshold, options.points.list.max));
    corners->set<attr::InOptGradStdDev>(static_cast<float>(options.sigma));
    corners->set<attr::InFeaturesDistX>(options.points.distance);
    corners->set<attr::InFeaturesDistY>(options.points.distance);
    corners->set<attr::InOptCornerDetectionParams2d>(createParameters(options, k));
    runToEnd(*corners, "corners", options.points.list.common);
    return {toList(*corners->getStorage<attr::OutPIPixels2d>(), *image), describe(options, k, "pixel"),
            "response " + lastKernelOf("orvik::imaproc::fd::HarrisCorner2dImgLvl3") + ", extrema "
                + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema2dLvl3")};
}

FoundPoints findInVolume(const imaproc::ConstImagePtr& image, const Options& options)
{
    const double k = options.k.value_or(0.005);
    if (options.measure == "harris" && k >= 1.0 / 27)
        throw CLI::ValidationError("--k", CLI::detail::to_string(k) + " is not below 1/27: no voxel would be a corner");
    const auto corners = processor::createInitialised<imaproc::fd::HarrisCorner3dLvl1>();
    corners->set<attr::InImg3d>(image);
    corners->set<attr::InLocalExtremaConfig>(attr::createLocalExtremaConfig(options.threshold, options.points.list.max));
    corners->set<attr::InOptGradStdDev>(static_cast<float>(options.sigma));
    corners->set<attr::InFeaturesDistX>(options.points.distance);
    corners->set<attr::InFeaturesDistY>(options.points.distance);
    corners->set<attr::InFeaturesDistZ>(options.points.getDistanceZ());
    corners->set<attr::InOptCornerDetectionParams3d>(createParameters(options, k));
    runToEnd(*corners, "corners", options.points.list.common);
    return {toList(*corners->getStorage<attr::OutPIVoxels3d>()->getEntry(PlanIndex())), describe(options, k, "voxel"),
            "response " + lastKernelOf("orvik::imaproc::fd::HarrisCorner3dImgLvl3") + ", extrema "
                + lastKernelOf("orvik::imaproc::fd::ExtractLocalExtrema3dLvl3")};
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Lists the corners of a PNG, JPEG or TIFF picture, or of a volume in a NIfTI file or the pages of a TIFF\n"
                 "file, the strongest ones first. Writes NAME-corners.csv, a line of x, y (z) and value for each, and\n"
                 "NAME-corners-overlay.png, the picture in grey with red crosses; of a volume NAME-corners-slices.png,\n"
                 "three planes through its middle, and NAME-corners-projections.png, the brightest voxels along each axis.",
                 "corners");
    Options options;
    options.points.list.max = 500;
    addPictureOrVolume(app, options.points.list.picture);
    addNumber(app, "--sigma", options.sigma,
              "standard deviation of the gradient and of its smoothing, 0.1 to 1000 pixels (default: 1)",
              isNumberFrom(0.1, 1000), "PIXELS");
    addChoice(app, "--measure", options.measure, "harris or eigenvalue, the smaller one of the tensor (default: harris)",
              {"harris", "eigenvalue"});
    addNumber(app, "--k", options.k,
              "constant of the Harris measure, 0 to 0.25 (default: 0.04), in volumes below 1/27 (default: 0.005)",
              isNumberFrom(0, 0.25), "NUMBER");
    addNumber(app, "--threshold", options.threshold,
              "list values of at least this many squared grey levels per pixel: the square root of the Harris\n"
              "measure (in volumes the cube root), or the eigenvalue (default: 0)",
              isNumberFrom(0), "VALUE");
    addPointOptions(app, options.points, "no pixel this near along x and y has a greater value");
    return runProgram(app, argc, argv, options.points.list.common, [&] {
        listPoints(options.points, "corners",
                   {[&](const imaproc::ConstImagePtr& image) { return findInPlanes(image, options); },
                    [&](const imaproc::ConstImagePtr& image) { return findInVolume(image, options); }});
    });
}
