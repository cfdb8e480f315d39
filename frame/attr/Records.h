#pragma once

#include "frame/attr/Enumerations.h"
#include "frame/serialization/DataItem.h"
#include "frame/serialization/PlanIndexedColl.h"

namespace orvik { namespace imaproc { namespace attr {

/// Result of statistical measures. `NbSamples` counts those that were looked at; NaN is none.
ORVIK_RECORD(StatsResult, (unsigned long, NbSamples)(double, Mean)(double, StdDev)(double, Min)(double, Max)(double, Sum));

/// How often the values of a plane occur. `ValuePerBin`: bin i counts the whole number FirstValue + i, and BinWidth is 1.
/// Else the bins part the values from FirstValue to LastValue evenly: bin i starts at FirstValue + i * BinWidth, and the
/// last one has LastValue, too. No samples: no bins, and 0 for all.
ORVIK_RECORD(HistogramResult, (bool, ValuePerBin)(double, FirstValue)(double, LastValue)(double, BinWidth)
                              (std::vector<unsigned long>, Counts));

/// Thresholds of an edge detector, in the unit of the gradient's magnitude. At or below the low one a pixel is no edge;
/// above the high one it is a strong edge, between them it is one when it hangs together with a strong one.
ORVIK_RECORD(CannyThresholds, (double, LowThreshold)(double, HighThreshold));

/// How far a Gaussian kernel reaches: standard deviations covered on each side.
ORVIK_RECORD(GaussianCoverage, (double, NbStdDev));
/// 4 standard deviations.
ORVIK_API boost::shared_ptr<GaussianCoverage> createGaussianCoverage();

/// What is measured at a corner; `HarrisK` is the constant of the Harris measure, which the other one does not read.
ORVIK_RECORD(CornerDetectionParams, (eCornerResponseType, CornerResponseType)(float, HarrisK));
/// The Harris measure of planes, k = 0.04.
ORVIK_API boost::shared_ptr<CornerDetectionParams> createCornerDetectionParams2d();

/// Which local extrema are listed: their type, those at or beyond the threshold (compared as 32-bit floats), at most that
/// many per plane, the most extreme ones first.
ORVIK_RECORD(LocalExtremaConfig, (eLocalExtremumType, LocalExtremumType)(double, Threshold)(unsigned long, MaxNbExtrema));
/// All maxima; what is given replaces the type, the threshold or the number.
ORVIK_API boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig();
ORVIK_API boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(unsigned long maxNbExtrema);
ORVIK_API boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(double threshold, unsigned long maxNbExtrema);
ORVIK_API boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(const eLocalExtremumType& type, double threshold);

/// A pixel of a plane: column, line and value. Whole positions are the centres of pixels, (0, 0) that of the first one.
ORVIK_RECORD(Pixel2d, (double, X)(double, Y)(double, Value));
ORVIK_RECORD_COLL(Pixels2d, Pixel2d);
ORVIK_PLAN_INDEXED(PlanIndexedPixels2d, Pixels2d);

}}}  // namespace orvik::imaproc::attr
