#pragma once

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A sphere in the arithmetic that it is drawn in, and the slices of the strip that it may reach.
struct DrawnSphere
{
    float x, y, z, radius;
    unsigned int label;
    unsigned long firstSlice, endSlice;  // of the volume
};

/// What one strip works with: its spheres in the order of the list, and the slice at hand.
struct SphereSlice
{
    std::vector<DrawnSphere> spheres;
    unsigned long sizeX, sizeY, rowSize;
    image::TypedOwnBuffer depths;  // distance over radius in the sphere that has the voxel, of a row where it is in one
    image::TypedOwnBuffer labels;
    std::vector<unsigned char> isDrawn;  // rows in which there are spheres
};

/// The samples from `first` on, up to `end`, that may lie within `reach` of `centre` along an axis of `size`; all of them where
/// nothing can be said.
struct Reach
{
    Reach(double centre, double reach, unsigned long size);
    unsigned long first = 0, end = 0;
};

/// A little more than the radius, by more than distances are rounded.
double reachOf(const DrawnSphere& sphere);

}}}  // namespace orvik::imaproc::fd
