#pragma once

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A sphere in the arithmetic that it is drawn in.
struct DrawnSphere
{
    float x, y, z, radius;
    float squareWithin;  // the greatest number whose root is not above the radius

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

/// The greatest number whose root, rounded to float, is not above `radius`, which is no NaN and not below 0.
float squareWithin(float radius);

/// What one strip works with: the spheres, and the slice at hand.
struct SphereSlice
{
    /// Columns of a row in which there are spheres; what lies beside them is not set.
    struct Columns
    {
        unsigned long first, end;
    };

    /// A sphere that may reach slices of the strip, by its place in the list.
    struct Reaching
    {
        unsigned int place;
        unsigned long firstSlice, endSlice;  // of the volume
    };

    std::vector<DrawnSphere> spheres;  // all of the list
    std::vector<Reaching> reaching;
    unsigned long sizeX, sizeY, rowSize;
    image::TypedOwnBuffer labels;
    std::vector<Columns> drawn;  // of each row
};

}}}  // namespace orvik::imaproc::fd
