#pragma once

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// What each whole radius of a range scores.
struct RadiusSums
{
    /// Nothing yet. Fails for a greatest radius that is negative.
    BoolResult initSums(const attr::HoughCirclesRadiusRange& range);
    /// The radius with the greatest mean: the smallest of equal ones, and of the range where none is above 0.
    double best() const;

    long minRadius = 0, maxRadius = 0;
    std::vector<double> sums;          // by whole radius
    std::vector<unsigned int> counts;  // of places
};

}}}  // namespace orvik::imaproc::fd
