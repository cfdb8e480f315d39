#pragma once

// The places on the shells about a centre that accumulators and radii of spheres look at.

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

namespace orvik { namespace imaproc { namespace fd {

/// Whether the lists for these radii can be held; the text of a failure has their size. A greatest radius that is negative has
/// none.
BoolResult checkShellMemory(const attr::HoughCirclesRadiusRange& range);

/// Those of the range, in raster order. A place is taken when its distance from the centre, cut off, lies within the range,
/// and belongs to the shell of that distance rounded, when that does so as well; so the shell of the smallest radius lacks its
/// inner half, and the places beyond the greatest radius and a half belong to none. Shells are never thinned: `nbMaxPts` is
/// the most that they count for, alike in the weight of each place.
/// Cost: the voxels of the cube about the greatest radius.
boost::shared_ptr<attr::HoughSpheresKernelXYZ> makeKernelXYZ(const attr::HoughCirclesRadiusRange& range,
                                                             unsigned int nbMaxPts);

}}}  // namespace orvik::imaproc::fd
