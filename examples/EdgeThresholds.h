#pragma once

#include "frame/attr/Declarations.h"

#include <optional>
#include <string>
#include <vector>

namespace orvik::examples {

/// Thresholds of an edge detector in grey levels per pixel, with what chose them.
struct EdgeThresholds
{
    double low;
    double high;
    std::string origin;
};

/// Takes what the user gave and derives the rest from the gradient of a picture or volume, in float images for each axis:
/// high is the 90th percentile of its magnitude, but no less than a tenth and no more than half of the largest one, and low
/// is 0.4 high.
EdgeThresholds chooseThresholds(const std::optional<double>& low, const std::optional<double>& high,
                                const std::vector<imaproc::ConstImagePtr>& gradient);

}  // namespace orvik::examples
