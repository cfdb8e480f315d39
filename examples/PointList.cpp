#include "PointList.h"

#include "OutputFiles.h"
#include "VolumeViews.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <iostream>

namespace orvik::examples {

namespace {

using imaproc::attr::Pixel2d;
using imaproc::attr::Voxel3d;

/// Pixels of crosses of 7 by 7 pixels about the points.
std::vector<unsigned char> toMask(const Picture& picture, const FeatureList& points)
{
    const long reach = 3, sizeX = static_cast<long>(picture.sizeX), sizeY = static_cast<long>(picture.sizeY);
    std::vector<unsigned char> mask(picture.sizeX * picture.sizeY, 0);
    const auto mark = [&](long x, long y) {
        if (x >= 0 && y >= 0 && x < sizeX && y < sizeY)
            mask[static_cast<std::size_t>(y * sizeX + x)] = 255;
    };
    for (const std::vector<double>& point : points.rows) {
        const long x = std::lround(point[0]), y = std::lround(point[1]);
        for (long step = -reach; step <= reach; ++step) {
            mark(x + step, y);
            mark(x, y + step);
        }
    }
    return mask;
}

/// The list and pictures of the volume: what was written.
std::string writeFiles(const PointOptions& options, const std::string& what, const FeatureList& points, const Volume& volume)
{
    const Views cuts = cutThroughMiddle(volume), projections = projectMaxima(volume);
    Views marksOfCuts = blankViews(volume), marksOfProjections = blankViews(volume);
    for (const std::vector<double>& point : points.rows) {
        markInCuts(marksOfCuts, volume, point[0], point[1], point[2]);
        markInProjections(marksOfProjections, point[0], point[1], point[2]);
    }
    makeFolder(options.list.folder);
    const std::string start = outputStart(options.list.folder, options.list.picture) + "-" + what;
    const std::string list = start + "." + options.list.format;
    OutputFiles output;
    addList(output, list, options.list, points);
    addViews(output, start + "-slices.png", cuts, marksOfCuts);
    addViews(output, start + "-projections.png", projections, marksOfProjections);
    output.putInPlace();
    return list + ", " + start + "-slices.png, " + start + "-projections.png";
}

std::string describeDistance(const PointOptions& options, bool isVolume)
{
    std::string text = "distance    " + std::to_string(options.distance);
    if (isVolume)
        text += " x " + std::to_string(options.distance) + " x " + std::to_string(options.getDistanceZ()) + " voxels\n";
    else
        text += " pixels\n";
    return text;
}

}  // namespace

void addPointOptions(CLI::App& app, PointOptions& options, const std::string& nearby)
{
    addNumber(app, "--distance", options.distance, nearby + ", 0 to 1000000 (default: 5)", isWholeNumberFrom(0, 1000000),
              "PIXELS");
    addNumber(app, "--distance-z", options.distanceZ, "the same along z of a volume, in slices (default: as --distance)",
              isWholeNumberFrom(0, 1000000), "SLICES");
    app.add_flag("--slice-by-slice", options.sliceBySlice, "take each slice of a volume for a picture of its own");
    addRawOptions(app, options.raw);
    addListOptions(app, options.list);
}

FeatureList toList(const imaproc::attr::PlanIndexedPixels2d& points, const image::BaseImage& image)
{
    const bool isStack = image.getSizeZ() > 1;
    FeatureList list = {
        isStack ? std::vector<std::string>{"x", "y", "z", "value"} : std::vector<std::string>{"x", "y", "value"}, {}};
    for (unsigned long z = 0; z < image.getSizeZ(); ++z) {
        const auto slice = points.getEntry(PlanIndex(z, 0, 0));
        for (std::size_t i = 0; slice && i < slice->size(); ++i) {
            std::vector<double> row = {(*slice)[i].get<Pixel2d::X>(), (*slice)[i].get<Pixel2d::Y>()};
            if (isStack)
                row.push_back(static_cast<double>(z));
            row.push_back((*slice)[i].get<Pixel2d::Value>());
            list.rows.push_back(std::move(row));
        }
    }
    return list;
}

FeatureList toList(const imaproc::attr::Voxels3d& points)
{
    FeatureList list = {{"x", "y", "z", "value"}, {}};
    for (std::size_t i = 0; i < points.size(); ++i)
        list.rows.push_back({points[i].get<Voxel3d::X>(), points[i].get<Voxel3d::Y>(), points[i].get<Voxel3d::Z>(),
                             points[i].get<Voxel3d::Value>()});
    return list;
}

void listPoints(const PointOptions& options, const std::string& what, const PointFinders& find)
{
    StageTimes times;
    Volume volume = times.measure("read", [&] { return readVolume(options.list.picture, options.raw); });
    const bool isStack = volume.sizeZ > 1, isVolume = isStack && !options.sliceBySlice;
    if (options.distanceZ && !isVolume)
        throw CLI::ValidationError("--distance-z", "there are no neighbours along z in single slices");
    const FoundPoints found =
        times.measure(what, [&] { return (isVolume ? find.inVolume : find.inPlanes)(wrapVolume(volume)); });

    std::string description, written;
    if (isStack) {
        description = describeVolume(options.list.picture, volume);
        written = times.measure("write", [&] { return writeFiles(options, what, found.list, volume); });
    } else {
        const Picture picture = toPicture(std::move(volume));
        description = "picture     " + options.list.picture + ", " + describe(picture) + '\n';
        const ListFiles files = times.measure("write", [&] {
            return writeList(options.list, what, found.list, picture, toMask(picture, found.list));
        });
        written = files.list + ", " + files.overlay;
    }
    if (options.list.common.quiet)
        return;
    std::cout << description << found.settings << describeDistance(options, isVolume) << "threads     "
              << core::getNbThreads() << '\n'
              << "kernels     " << found.kernels << '\n'
              << what << std::string(12 - what.size(), ' ') << found.list.rows.size() << " listed, at most "
              << options.list.max << (isStack && !isVolume ? " per slice" : "") << '\n'
              << "time        " << times.toString() << '\n'
              << "written     " << written << std::endl;
}

}  // namespace orvik::examples
