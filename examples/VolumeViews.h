#pragma once

// Pictures of volumes.

#include "VolumeIo.h"

#include <array>

namespace orvik::examples {

/// A plane of bytes, for each way to look at a volume.
struct View
{
    unsigned long sizeX, sizeY;
    std::vector<unsigned char> pixels;
};

/// A volume from three sides: along z with x to the right and y down, as slices are; along y with x to the right and z up;
/// along x with y to the right and z up. A pixel is a voxel, whatever the spacing.
using Views = std::array<View, 3>;

/// All 0.
Views blankViews(const Volume& volume);

/// The three planes through the middle, voxel (sizeX / 2, sizeY / 2, sizeZ / 2), in grey as toDisplay8() has it.
Views cutThroughMiddle(const Volume& volume);

/// The greatest sample along each ray, in the same grey.
Views projectMaxima(const Volume& volume);

/// Marks a voxel by a cross of 7 by 7 pixels, from all three sides: where it is in the projections; in the cuts where they
/// go through it, and by a single pixel where it is within 3 voxels of them.
void markInProjections(Views& marks, double x, double y, double z);
void markInCuts(Views& marks, const Volume& volume, double x, double y, double z);

/// Marks a sphere: its outline from all three sides; where the cuts go through it, the circles that they make of it.
void outlineInProjections(Views& marks, double x, double y, double z, double radius);
void outlineInCuts(Views& marks, const Volume& volume, double x, double y, double z, double radius);

/// Writes views side by side among files of which all appear or none does: in grey, and red where a mark is not 0.
void addViews(OutputFiles& files, const std::string& path, const Views& views, const Views& marks);

}  // namespace orvik::examples
