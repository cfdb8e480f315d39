// Finds the edges of a picture: reads a PNG, JPEG or TIFF file, writes the edges and the picture with its edges in red.

#include "EdgeThresholds.h"
#include "PictureIo.h"
#include "ProgramSupport.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;
namespace fs = std::filesystem;

namespace {

typedef boost::shared_ptr<image::BaseImage> ImagePtr;

struct Options
{
    std::string picture;
    std::string folder = ".";
    double sigma = 1.0;
    std::optional<double> low, high;
    std::string policy = "iterative";
    CommonOptions common;
};

struct Gradient
{
    ImagePtr x, y;
};

struct Files
{
    std::string edges, overlay;
};

// Both stages go through the processors, not through the functions gaussianGradient2dImg and cannyEdges2dImg that do
// the same in one call: only a processor tells its progress.

Gradient computeGradient(const Picture& picture, const Options& options)
{
    const auto gradient = processor::createInitialised<imaproc::filter::GaussianGradient2dImgLvl1>();
    gradient->set<attr::InImg>(wrapPicture(picture));
    gradient->set<attr::InStdDevX>(static_cast<float>(options.sigma));
    gradient->set<attr::InStdDevY>(static_cast<float>(options.sigma));
    runToEnd(*gradient, "gradient", options.common);
    return {gradient->getStorage<attr::OutOptGradXImg>(), gradient->getStorage<attr::OutOptGradYImg>()};
}

ImagePtr findEdges(const Gradient& gradient, const EdgeThresholds& thresholds, const Options& options)
{
    const auto canny = processor::createInitialised<imaproc::fd::CannyEdges2dImgLvl1>();
    canny->set<attr::InGxGreyImg2d>(gradient.x);
    canny->set<attr::InGyGreyImg2d>(gradient.y);
    canny->set<attr::InCannyThresholds>(attr::CannyThresholds::createNode(thresholds.low, thresholds.high));
    canny->set<attr::InOptOptimizationPolicy>(options.policy == "labels" ? attr::ePOP_Labels : attr::ePOP_Iterative);
    runToEnd(*canny, "edges", options.common);
    return canny->getStorage<attr::OutBinImg>();
}

/// Both files, or none of them.
Files writeFiles(const Picture& picture, const std::vector<unsigned char>& edges, const Options& options)
{
    const std::vector<unsigned char> overlay = drawOverlay(picture, edges);
    makeFolder(options.folder);
    const std::string start = (fs::path(options.folder) / fs::path(options.picture).stem()).string();
    const Files files = {start + "-edges.png", start + "-overlay.png"};
    const long rowBytes = static_cast<long>(picture.sizeX);
    writeGreyPng(files.edges, picture.sizeX, picture.sizeY, edges.data(), rowBytes);
    try {
        writeRgbPng(files.overlay, picture.sizeX, picture.sizeY, overlay.data(), 3 * rowBytes);
    } catch (...) {
        std::remove(files.edges.c_str());
        throw;
    }
    return files;
}

void run(const Options& options)
{
    if (options.low && options.high && *options.low > *options.high)
        throw CLI::ValidationError("--low", CLI::detail::to_string(*options.low) + " is above --high, "
                                                + CLI::detail::to_string(*options.high));

    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.picture); });
    const Gradient gradient = times.measure("gradient", [&] { return computeGradient(picture, options); });
    const EdgeThresholds thresholds = times.measure(
        "thresholds", [&] { return chooseThresholds(options.low, options.high, *gradient.x, *gradient.y); });
    const ImagePtr edges = times.measure("edges", [&] { return findEdges(gradient, thresholds, options); });
    const std::vector<unsigned char> mask = toMask(*edges);
    const Files files = times.measure("write", [&] { return writeFiles(picture, mask, options); });

    if (options.common.quiet)
        return;
    const auto nbEdges = std::count(mask.begin(), mask.end(), 255);
    const double share = 100.0 * static_cast<double>(nbEdges) / static_cast<double>(mask.size());
    std::cout << "picture     " << options.picture << ", " << describe(picture) << '\n'
              << "sigma       " << options.sigma << " pixels\n"
              << "thresholds  low " << thresholds.low << ", high " << thresholds.high << " grey levels per pixel ("
              << thresholds.origin << ")\n"
              << "policy      " << options.policy << '\n'
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     gradient " << lastKernelOf("orvik::imaproc::filter::GaussianGradient2dImgLvl3")
              << ", edges " << lastKernelOf("orvik::imaproc::fd::CannyEdges2dImgLvl3") << '\n'
              << "edges       " << nbEdges << " of " << mask.size() << " pixels (" << std::setprecision(3) << share
              << " %)\n"
              << "time        " << times.toString() << '\n'
              << "written     " << files.edges << ", " << files.overlay << std::endl;
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app("Finds the edges of a PNG, JPEG or TIFF picture. Writes NAME-edges.png, with edges in white, and\n"
                 "NAME-overlay.png, the picture in grey with edges in red.",
                 "edges");
    Options options;
    app.add_option("PICTURE", options.picture, "file to read; colour is taken as grey")->required()->type_name("");
    app.add_option("-o,--output", options.folder, "folder to write to, made if missing (default: the current one)")
        ->type_name("FOLDER");
    app.add_option("--sigma", options.sigma, "standard deviation of the smoothing, 0.1 to 1000 pixels (default: 1)")
        ->check(isNumberFrom(0.1, 1000))
        ->type_name("PIXELS");
    app.add_option("--low", options.low, "weak edges have a gradient above this, in grey levels per pixel")
        ->check(isNumberFrom(0))
        ->type_name("LEVELS");
    app.add_option("--high", options.high,
                   "strong edges have one above this; weak edges count when they hang together with strong ones "
                   "(default: both thresholds from the picture)")
        ->check(isNumberFrom(0))
        ->type_name("LEVELS");
    app.add_option("--policy", options.policy,
                   "way to the weak edges: labels or iterative; same result (default: iterative)")
        ->check(CLI::IsMember({"labels", "iterative"}))
        ->type_name("NAME");
    addCommonOptions(app, options.common);
    return runProgram(app, argc, argv, options.common, [&] { run(options); });
}
