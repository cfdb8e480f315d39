#pragma once

#include "FeatureList.h"
#include "VolumeSupport.h"

#include <functional>
#include <optional>
#include <string>

namespace orvik::examples {

/// What programs that list points of a picture or volume are told alike.
struct PointOptions
{
    unsigned int distance = 5;
    std::optional<unsigned int> distanceZ;
    bool sliceBySlice = false;
    RawOptions raw;
    ListOptions list;

    unsigned int getDistanceZ() const { return distanceZ.value_or(distance); }
};

/// Adds them, all but the file, which comes first, and the common ones, which come last. `nearby` says what is true of the
/// pixels within the distance of a listed one.
void addPointOptions(CLI::App& app, PointOptions& options, const std::string& nearby);

/// The points of an image, and what they were found with: lines for the report.
struct FoundPoints
{
    FeatureList list;
    std::string settings;
    std::string kernels;
};

/// Lists of points with x, y and value, or with x, y, z and value where there are slices.
FeatureList toList(const imaproc::attr::PlanIndexedPixels2d& points, const image::BaseImage& image);
FeatureList toList(const imaproc::attr::Voxels3d& points);

/// How a program finds its points: in each plane of an image, or in a volume as a whole.
struct PointFinders
{
    std::function<FoundPoints(const imaproc::ConstImagePtr&image)> inPlanes, inVolume;
};

/// Reads the file, finds `what`, writes the list, with an overlay of a picture or views of a volume that have a cross on
/// each point, and reports unless it is to be quiet. A file of several slices is a volume.
void listPoints(const PointOptions& options, const std::string& what, const PointFinders& find);

}  // namespace orvik::examples
