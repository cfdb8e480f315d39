// Finds the edges of a picture: reads a PNG, JPEG or TIFF file, writes the edges and the picture with its edges in red.

#include "EdgeStages.h"
#include "OutputFiles.h"
#include "PictureIo.h"

#include "frame/core/Scheduler.h"

#include <filesystem>
#include <iostream>

using namespace orvik;
using namespace orvik::examples;
namespace fs = std::filesystem;

namespace {

struct Options
{
    std::string picture;
    std::string folder = ".";
    EdgeOptions edges;
    std::string policy = "iterative";
    CommonOptions common;
};

struct Files
{
    std::string edges, overlay;
};

/// Both files, or none of them.
Files writeFiles(const Picture& picture, const std::vector<unsigned char>& edges, const Options& options)
{
    const std::vector<unsigned char> overlay = drawOverlay(picture, edges);
    makeFolder(options.folder);
    const std::string start = (fs::path(options.folder) / fs::path(options.picture).stem()).string();
    const Files files = {start + "-edges.png", start + "-overlay.png"};
    const long rowBytes = static_cast<long>(picture.sizeX);
    OutputFiles output;
    addGreyPng(output, files.edges, picture.sizeX, picture.sizeY, edges.data(), rowBytes);
    addRgbPng(output, files.overlay, picture.sizeX, picture.sizeY, overlay.data(), 3 * rowBytes);
    output.putInPlace();
    return files;
}

void run(const Options& options)
{
    checkEdgeOptions(options.edges);
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.picture); });
    const Edges edges = findEdges(picture, options.edges, options.policy == "labels", options.common, times);
    const std::vector<unsigned char> mask = toMask(*edges.image);
    const Files files = times.measure("write", [&] { return writeFiles(picture, mask, options); });
    if (options.common.quiet)
        return;
    std::cout << "picture     " << options.picture << ", " << describe(picture) << '\n'
              << describe(options.edges, edges.thresholds) << "policy      " << options.policy << '\n'
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     gradient " << lastKernelOf("orvik::imaproc::filter::GaussianGradient2dImgLvl3") << ", edges "
              << lastKernelOf("orvik::imaproc::fd::CannyEdges2dImgLvl3") << '\n'
              << describeEdges(mask) << "time        " << times.toString() << '\n'
              << "written     " << files.edges << ", " << files.overlay << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app("Finds the edges of a PNG, JPEG or TIFF picture. Writes NAME-edges.png, with edges in white, and\n"
                 "NAME-overlay.png, the picture in grey with edges in red.",
                 "edges");
    Options options;
    addPicture(app, options.picture);
    addFolder(app, options.folder);
    addEdgeOptions(app, options.edges);
    addChoice(app, "--policy", options.policy,
              "way to the weak edges: labels or iterative; same result (default: iterative)", {"labels", "iterative"});
    addCommonOptions(app, options.common);
    return runProgram(app, argc, argv, options.common, [&] { run(options); });
}
