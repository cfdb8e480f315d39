#pragma once

#include "frame/serialization/DataItem.h"

namespace orvik { namespace imaproc { namespace attr {

/// Result of statistical measures. `NbSamples` counts those that were looked at; NaN is none.
ORVIK_RECORD(StatsResult, (unsigned long, NbSamples)(double, Mean)(double, StdDev)(double, Min)(double, Max)(double, Sum));

/// Thresholds of an edge detector, in the unit of the gradient's magnitude. At or below the low one a pixel is no edge;
/// above the high one it is a strong edge, between them it is one when it hangs together with a strong one.
ORVIK_RECORD(CannyThresholds, (double, LowThreshold)(double, HighThreshold));

/// How far a Gaussian kernel reaches: standard deviations covered on each side.
ORVIK_RECORD(GaussianCoverage, (double, NbStdDev));
/// 4 standard deviations.
ORVIK_API boost::shared_ptr<GaussianCoverage> createGaussianCoverage();

}}}  // namespace orvik::imaproc::attr
