// Lists the spheres of a volume: reads a NIfTI file or the pages of a TIFF file, writes a list of spheres, a volume of their
// numbers, and pictures with them.

#include "FeatureList.h"
#include "OutputFiles.h"
#include "RoundOptions.h"
#include "VolumeSupport.h"
#include "VolumeViews.h"

#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/Records.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"

#include <algorithm>
#include <cstring>
#include <iostream>

using namespace orvik;
using namespace orvik::examples;
namespace attr = orvik::imaproc::attr;
typedef attr::HoughSphere3dPpties Sphere;

namespace {

struct Options
{
    RoundOptions round;
    RawOptions raw;
    std::string format;
    ListOptions list;
};

/// The greatest radius that fits into the volume.
unsigned long largestRadius(const Volume& volume)
{
    return std::min({volume.sizeX, volume.sizeY, volume.sizeZ}) / 2;
}

// Through the processor, not through the function houghSpheres3d that does the same in one call: only a processor tells its
// progress.

Ptr<attr::HoughSpheres3dPpties> findSpheres(const Volume& volume, const Options& options)
{
    const auto spheres = processor::createInitialised<imaproc::fd::HoughSpheres3dLvl1>();
    spheres->set<attr::InOptGreyImg3d>(wrapVolume(volume));
    spheres->set<attr::InOptHoughCirclesRadiusRange>(options.round.createRange());
    spheres->set<attr::InOptCircleIntensityType>(options.round.getKind());
    spheres->set<attr::InOptMaxAngleWithGradDir>(options.round.angle);
    spheres->set<attr::InOptAccumIntensityThreshold>(options.round.createThreshold());
    spheres->set<attr::InOptRemoveTooCloseCirclesParams>(options.round.createRemoval());
    runToEnd(*spheres, "spheres", options.list.common);

    const auto found = spheres->getStorage<attr::OutPIHoughSpheres3dPpties>()->getEntry(PlanIndex());
    const auto listed = attr::HoughSpheres3dPpties::createNode();
    for (std::size_t i = 0; i < found->size() && i < options.list.max; ++i)
        listed->access<attr::HoughSpheres3dPpties::Coll>().push_back(boost::make_shared<Sphere>((*found)[i]));
    return listed;
}

FeatureList toList(const attr::HoughSpheres3dPpties& spheres)
{
    FeatureList list = {{"x", "y", "z", "radius", "value"}, {}};
    for (std::size_t i = 0; i < spheres.size(); ++i) {
        const Sphere& sphere = spheres[i];
        list.rows.push_back({sphere.get<Sphere::X>(), sphere.get<Sphere::Y>(), sphere.get<Sphere::Z>(),
                             sphere.get<Sphere::Radius>(), sphere.get<Sphere::Value>()});
    }
    return list;
}

/// The number of the sphere that each voxel is in, in as many bytes as the numbers need.
Volume drawLabels(const Volume& volume, const Ptr<attr::HoughSpheres3dPpties>& spheres)
{
    const imaproc::ImagePtr drawn =
        imaproc::fd::houghSpheres3dLabelImg(ConstPtr<attr::HoughSpheres3dPpties>(spheres), wrapVolume(volume));
    const SampleType type = spheres->size() <= 255     ? SampleType::UInt8
                            : spheres->size() <= 65535 ? SampleType::UInt16
                                                       : SampleType::UInt32;
    Volume labels = {volume.sizeX, volume.sizeY, volume.sizeZ, type, {}, volume.space};
    const std::size_t lineSize = volume.sizeX * bytesPerSample(type);
    labels.samples.resize(lineSize * volume.sizeY * volume.sizeZ);
    unsigned char* to = labels.samples.data();
    for (unsigned long z = 0; z < volume.sizeZ; ++z)
        for (unsigned long y = 0; y < volume.sizeY; ++y, to += lineSize)
            std::memcpy(to, drawn->getLine(y, z), lineSize);
    return labels;
}

/// All files, or none of them: what was written.
std::string writeFiles(const Volume& volume, const Volume& labels, const FeatureList& spheres, const Options& options)
{
    Views inCuts = blankViews(volume), inProjections = blankViews(volume);
    for (const std::vector<double>& sphere : spheres.rows) {
        outlineInCuts(inCuts, volume, sphere[0], sphere[1], sphere[2], sphere[3]);
        outlineInProjections(inProjections, sphere[0], sphere[1], sphere[2], sphere[3]);
    }
    makeFolder(options.list.folder);
    const std::string start = outputStart(options.list.folder, options.list.picture) + "-spheres";
    const std::string format = endingOf(options.format, volume);
    const std::string list = start + "." + options.list.format, drawn = start + "-labels." + format;
    OutputFiles output;
    addList(output, list, options.list, spheres);
    addVolume(output, drawn, labels);
    addViews(output, start + "-slices.png", cutThroughMiddle(volume), inCuts);
    addViews(output, start + "-projections.png", projectMaxima(volume), inProjections);
    output.putInPlace();
    return list + ", " + drawn + ", " + start + "-slices.png, " + start + "-projections.png";
}

void print(const Volume& volume, const FeatureList& spheres, const Options& options)
{
    std::cout << describeVolume(options.list.picture, volume) << "radii       "
              << describeRange(options.round, largestRadius(volume), "voxels") << '\n'
              << "threads     " << core::getNbThreads() << '\n'
              << "spheres     " << spheres.rows.size() << " listed, at most " << options.list.max << '\n';
    for (const std::vector<double>& sphere : spheres.rows)
        std::cout << "            (" << sphere[0] << ", " << sphere[1] << ", " << sphere[2] << "), radius " << sphere[3]
                  << ", value " << sphere[4] << '\n';
}

void run(const Options& options)
{
    checkRange(options.round);
    StageTimes times;
    const Volume volume = times.measure("read", [&] { return readVolume(options.list.picture, options.raw); });
    if (volume.sizeZ == 1)
        throw PictureError("'" + options.list.picture
                           + "' has a single slice: the program circles finds circles in pictures");
    checkRangeOf(options.round, largestRadius(volume), "volume");
    // Three gradients and the scores, of floats, and the labels twice.
    requireMemoryFor(volume, 4 * 4 + 2);
    const Ptr<attr::HoughSpheres3dPpties> found = times.measure("spheres", [&] { return findSpheres(volume, options); });
    const FeatureList spheres = toList(*found);
    const Volume labels = times.measure("labels", [&] { return drawLabels(volume, found); });
    const std::string written = times.measure("write", [&] { return writeFiles(volume, labels, spheres, options); });
    if (options.list.common.quiet)
        return;
    print(volume, spheres, options);
    std::cout << "time        " << times.toString() << '\n' << "written     " << written << std::endl;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what runProgram does not catch is a lack of memory for the options
int main(int argc, char** argv)
{
    CLI::App app(
        "Lists the spheres of a volume in a NIfTI file or the pages of a TIFF file, the strongest ones first. Writes\n"
        "NAME-spheres.csv, a line of x, y, z, radius and value for each; NAME-spheres-labels.nii.gz (or another\n"
        "format), whose voxels have the number of the sphere that they are in; NAME-spheres-slices.png, three\n"
        "planes through the middle with the spheres in red, and NAME-spheres-projections.png, the brightest\n"
        "voxels along each axis with them.",
        "spheres");
    Options options;
    options.round.maxRadius = 25;
    options.list.max = 1000;
    addPictureOrVolume(app, options.list.picture);
    addRoundOptions(app, options.round, "spheres", "voxels");
    addVolumeFormat(app, "--volume-format", options.format, "labels");
    addRawOptions(app, options.raw);
    addListOptions(app, options.list);
    return runProgram(app, argc, argv, options.list.common, [&] { run(options); });
}
