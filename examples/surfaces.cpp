// Finds the surfaces of a volume: reads a NIfTI file or the pages of a TIFF file, writes a volume of the surfaces and pictures
// of it.

#include "EdgeStages.h"
#include "OutputFiles.h"
#include "VolumeSupport.h"
#include "VolumeViews.h"

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <iostream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;

namespace {

struct Options
{
    std::string file;
    RawOptions raw;
    std::string folder = ".";
    EdgeOptions edges;
    std::optional<double> sigmaZ;
    std::string format;
    CommonOptions common;

    double getSigmaZ() const { return sigmaZ.value_or(edges.sigma); }
};

struct VolumeGradient
{
    imaproc::ImagePtr x, y, z;
};

// Through the processors, not through the functions gaussianGradient3dImg and cannySurfaces3dImg that do the same in one
// call: only a processor tells its progress.

VolumeGradient computeGradient(const Volume& volume, const Options& options)
{
    const auto gradient = processor::createInitialised<imaproc::filter::GaussianGradient3dImgLvl1>();
    gradient->set<attr::InImg3d>(wrapVolume(volume));
    gradient->set<attr::InStdDevX>(static_cast<float>(options.edges.sigma));
    gradient->set<attr::InStdDevY>(static_cast<float>(options.edges.sigma));
    gradient->set<attr::InStdDevZ>(static_cast<float>(options.getSigmaZ()));
    runToEnd(*gradient, "gradient", options.common);
    return {gradient->getStorage<attr::OutOptGradXImg3d>(), gradient->getStorage<attr::OutOptGradYImg3d>(),
            gradient->getStorage<attr::OutOptGradZImg3d>()};
}

imaproc::ImagePtr detectSurfaces(const VolumeGradient& gradient, const EdgeThresholds& thresholds, const Options& options)
{
    const auto canny = processor::createInitialised<imaproc::fd::CannySurfaces3dImgLvl1>();
    canny->set<attr::InGxGreyImg3d>(gradient.x);
    canny->set<attr::InGyGreyImg3d>(gradient.y);
    canny->set<attr::InGzGreyImg3d>(gradient.z);
    canny->set<attr::InCannyThresholds>(attr::CannyThresholds::createNode(thresholds.low, thresholds.high));
    runToEnd(*canny, "surfaces", options.common);
    return canny->getStorage<attr::OutBinImg>();
}

/// How steep surfaces are: the gradient's magnitude on them, 0 elsewhere.
Volume measureSteepness(const Volume& surfaces, const VolumeGradient& gradient)
{
    Volume steepness = {surfaces.sizeX, surfaces.sizeY, surfaces.sizeZ, SampleType::Real32, {}, {}};
    steepness.samples.resize(surfaces.samples.size() * sizeof(float));
    const unsigned char* surface = surfaces.samples.data();
    unsigned char* out = steepness.samples.data();
    for (unsigned long z = 0; z < surfaces.sizeZ; ++z) {
        for (unsigned long y = 0; y < surfaces.sizeY; ++y) {
            const auto* const gx = static_cast<const float*>(gradient.x->getLine(y, z));
            const auto* const gy = static_cast<const float*>(gradient.y->getLine(y, z));
            const auto* const gz = static_cast<const float*>(gradient.z->getLine(y, z));
            for (unsigned long x = 0; x < surfaces.sizeX; ++x, ++surface, out += sizeof(float)) {
                const double dx = gx[x], dy = gy[x], dz = gz[x];
                const auto magnitude = *surface != 0 ? static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz)) : 0.0F;
                std::memcpy(out, &magnitude, sizeof magnitude);
            }
        }
    }
    return steepness;
}

/// All files, or none of them: what was written.
std::string writeFiles(const Volume& volume, const Volume& surfaces, const VolumeGradient& gradient, const Options& options)
{
    const Views projections = projectMaxima(measureSteepness(surfaces, gradient));
    makeFolder(options.folder);
    const std::string start = outputStart(options.folder, options.file) + "-surfaces";
    const std::string format = endingOf(options.format, volume);
    OutputFiles output;
    addVolume(output, start + "." + format, surfaces);
    addViews(output, start + "-slices.png", cutThroughMiddle(volume), cutThroughMiddle(surfaces));
    addViews(output, start + "-projections.png", projections, blankViews(volume));
    output.putInPlace();
    return start + "." + format + ", " + start + "-slices.png, " + start + "-projections.png";
}

void print(const Options& options, const Volume& volume, const EdgeThresholds& thresholds, const Volume& surfaces)
{
    const auto nbVoxels = std::count(surfaces.samples.begin(), surfaces.samples.end(), 255);
    const double share = 100.0 * static_cast<double>(nbVoxels) / static_cast<double>(surfaces.samples.size());
    std::cout << describeVolume(options.file, volume) << "sigma       " << options.edges.sigma << " x "
              << options.edges.sigma << " x " << options.getSigmaZ() << " voxels\n"
              << describe(thresholds) << "threads     " << core::getNbThreads() << '\n'
              << "kernels     gradient " << lastKernelOf("orvik::imaproc::filter::GaussianGradient3dImgLvl3")
              << ", surfaces " << lastKernelOf("orvik::imaproc::fd::CannySurfaces3dImgLvl3") << '\n'
              << "surfaces    " << nbVoxels << " of " << surfaces.samples.size() << " voxels (" << std::setprecision(3)
              << share << " %)\n";
}

void run(const Options& options)
{
    checkEdgeOptions(options.edges);
    StageTimes times;
    const Volume volume = times.measure("read", [&] { return readVolume(options.file, options.raw); });
    if (volume.sizeZ == 1)
        throw PictureError("'" + options.file + "' has a single slice: the program edges finds edges in pictures");
    // Three gradients of floats, the surfaces twice, and how steep they are.
    requireMemoryFor(volume, 3 * 4 + 2 + 4);
    const VolumeGradient gradient = times.measure("gradient", [&] { return computeGradient(volume, options); });
    const EdgeThresholds thresholds = times.measure("thresholds", [&] {
        return chooseThresholds(options.edges.low, options.edges.high, {gradient.x, gradient.y, gradient.z});
    });
    const auto binary = times.measure("surfaces", [&] { return detectSurfaces(gradient, thresholds, options); });
    const Volume surfaces = {volume.sizeX, volume.sizeY, volume.sizeZ, SampleType::UInt8, toMask(*binary), volume.space};
    const std::string written = times.measure("write", [&] { return writeFiles(volume, surfaces, gradient, options); });
    if (options.common.quiet)
        return;
    print(options, volume, thresholds, surfaces);
    std::cout << "time        " << times.toString() << '\n' << "written     " << written << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app(
        "Finds the surfaces of a volume in a NIfTI file or the pages of a TIFF file. Writes NAME-surfaces.nii.gz (or\n"
        "another format), with surfaces of 255 on 0; NAME-surfaces-slices.png, three planes through the middle with\n"
        "surfaces in red; and NAME-surfaces-projections.png, the steepest surfaces along each axis.",
        "surfaces");
    Options options;
    addPictureOrVolume(app, options.file);
    addFolder(app, options.folder);
    addEdgeOptions(app, options.edges);
    addNumber(app, "--sigma-z", options.sigmaZ, "the same along z, in slices (default: as --sigma)", isNumberFrom(0.1, 1000),
              "SLICES");
    addVolumeFormat(app, "--format", options.format, "volume");
    addRawOptions(app, options.raw);
    addCommonOptions(app, options.common);
    return runProgram(app, argc, argv, options.common, [&] { run(options); });
}
