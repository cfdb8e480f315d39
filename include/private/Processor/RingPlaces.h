#pragma once

// The places on the rings about a centre that accumulators and radii of circles look at.

#include "frame/util/ProcessingResult.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// One of them: its offset from the centre, the unit vector and length of that in single precision, and how many places its
/// ring counts for: those of the same whole radius, but no more than rings are thinned to.
struct RingPlace
{
    int dx, dy;
    float unitX, unitY, radius;
    unsigned long nbPts;
};

/// Whether the lists for these radii can be held; the text of a failure has their size. A greatest radius that is negative has
/// none. They are as long as the discs of the
/// greatest radius have pixels.
BoolResult checkRingMemory(long minRadius, long maxRadius);

/// Those of the whole radii from `minRadius` to `maxRadius`, in raster order. Rings of more than `nbMaxPts` places are thinned
/// to that many, spread evenly over the angle. Cost: the disc's pixels, and sorting those of rings that are thinned.
std::vector<RingPlace> ringPlaces(long minRadius, long maxRadius, unsigned int nbMaxPts);

}}}  // namespace orvik::imaproc::fd
