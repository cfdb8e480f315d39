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

    /// A little more than the radius, by more than distances are rounded.
    double reach() const { return static_cast<double>(radius) * (1 + 1e-6) + 1e-30; }
};

/// The samples from `first` on, up to `end`, that may lie within `reach` of `centre` along an axis of `size`; all of them where
/// nothing can be said.
struct Reach
{
    Reach(double centre, double reach, unsigned long size)
    {
        const double from = centre - reach, to = centre + reach + 1, limit = static_cast<double>(size);
        if (to <= 0 || from >= limit)
            return;
        first = from > 0 ? static_cast<unsigned long>(from) : 0;
        end = to < limit ? static_cast<unsigned long>(to) : size;
    }
    unsigned long first = 0, end = 0;
};

/// What one strip works with: its spheres in the order of the list, and the slice at hand.
struct SphereSlice
{
    /// Columns of a row in which there are spheres; what lies beside them is not set.
    struct Columns
    {
        unsigned long first, end;
    };

    std::vector<DrawnSphere> spheres;
    unsigned long sizeX, sizeY, rowSize;
    image::TypedOwnBuffer depths;  // distance over radius in the sphere that has the voxel
    image::TypedOwnBuffer labels;
    std::vector<Columns> drawn;  // of each row
};

}}}  // namespace orvik::imaproc::fd
