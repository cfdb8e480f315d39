#pragma once

#include "frame/attr/Declarations.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Mean, deviation and extremes of all samples of an image of any sizes but those that are NaN; a record of zeros where
/// there are none. Sums are joined line by line: the same bits on any machine. Cost: two reads per sample, one thread.
void measureStats(const image::BaseImage& image, attr::StatsResult& stats);

/// The same of one plane; fails for an image of several, which `attribute` names.
BoolResult measureStatsOfPlane(const image::BaseImage& plane, const std::string& attribute, attr::StatsResult& stats);

}}}  // namespace orvik::imaproc::glbmsr
