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
/// That of volumes, k = 0.005: it is cubic there, and from k = 1/27 on no corner is above 0.
ORVIK_API boost::shared_ptr<CornerDetectionParams> createCornerDetectionParams3d();

/// Which local extrema are listed: their type, those at or beyond the threshold (compared as 32-bit floats), at most that
/// many per plane or volume, the most extreme ones first.
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

/// A voxel of a volume: column, line, slice and value. Whole positions are the centres of voxels, (0, 0, 0) that of the first.
ORVIK_RECORD(Voxel3d, (double, X)(double, Y)(double, Z)(double, Value));
ORVIK_RECORD_COLL(Voxels3d, Voxel3d);
ORVIK_PLAN_INDEXED(PlanIndexedVoxels3d, Voxels3d);

/// Bins of an accumulator of lines, and which pixels vote. A bin is `RhoStep` pixels wide; a width below 2^-52, or that is
/// no number, makes an accumulator of the size of width 1, whose bins no vote reaches. `NbThetaBins` angles from `ThetaMin`
/// on part the range that ends before `ThetaMax`, in radians. A pixel votes with its value when that is above
/// `PixelThreshold`.
ORVIK_RECORD(HoughLinesImgParams, (double, RhoStep)(double, ThetaMin)(double, ThetaMax)(unsigned int, NbThetaBins)
                                  (float, PixelThreshold));
/// Bins of 1 pixel and 180 angles from 0 to pi; pixels above 0 vote.
ORVIK_API boost::shared_ptr<HoughLinesImgParams> createHoughLinesImgParams();

/// The same for votes of gradients: a pixel votes with the magnitude of its gradient when that is above `PixelThreshold`.
ORVIK_RECORD(HoughLinesGradientImgParams, (double, RhoStep)(double, ThetaMin)(double, ThetaMax)(unsigned int, NbThetaBins)
                                          (float, PixelThreshold));
/// Bins of 1 pixel and 360 angles from -pi to pi; gradients above 0 vote.
ORVIK_API boost::shared_ptr<HoughLinesGradientImgParams> createHoughLinesGradientImgParams();

/// Which bins of an accumulator are lines: the highest ones within `PeakDist` bins along rho and theta, whose votes reach
/// `Threshold`, which `ThresholdType` explains: see eHoughLinesThresholdType.
ORVIK_RECORD(HoughLinesExtractionParams, (int, ThresholdType)(double, Threshold)(unsigned int, PeakDist));
/// At least half of the votes of the highest bin, and none higher within 10 bins.
ORVIK_API boost::shared_ptr<HoughLinesExtractionParams> createHoughLinesExtractionParams();

/// A line of a plane: the points with x * cos(Theta) + y * sin(Theta) = Rho, in pixels from the centre of the first one.
/// Theta, in radians, is the angle of the line's normal with the x axis, which turns towards y.
ORVIK_RECORD(HoughLine2dPpties, (double, Rho)(double, Theta)(double, AccumulatorValue));
ORVIK_RECORD_COLL(HoughLines2dPpties, HoughLine2dPpties);
ORVIK_PLAN_INDEXED(PlanIndexedHoughLines2dPpties, HoughLines2dPpties);

/// Radii of circles or spheres, in whole pixels, both ends included. From 1 on: the only pixel of radius 0 has no direction.
ORVIK_RECORD(HoughCirclesRadiusRange, (long, MinRadius)(long, MaxRadius));
ORVIK_API boost::shared_ptr<HoughCirclesRadiusRange> createHoughCirclesRadiusRange(long min, long max);

/// A place on the rings about a centre: its offset from the centre in pixels, its direction, its exact radius, and how many
/// places its ring, that of the same whole radius, counts for.
ORVIK_RECORD(HoughCirclesKernelXYElt, (long, OffsetX)(long, OffsetY)(float, UnitX)(float, UnitY)(float, Radius)
                                      (unsigned long, NbPts));
ORVIK_RECORD_COLL(HoughCirclesKernelXY, HoughCirclesKernelXYElt);

/// The same for complex accumulators: a number whose angle rises with the radius, from 0 to a whole turn over the range, and
/// whose modulus is one over the places that the ring counts for.
ORVIK_RECORD(HoughCirclesPhaseCodedKernelXYElt, (long, OffsetX)(long, OffsetY)(float, UnitX)(float, UnitY)(float, Radius)
                                                (float, PhaseRe)(float, PhaseIm));
ORVIK_RECORD_COLL(HoughCirclesPhaseCodedKernelXY, HoughCirclesPhaseCodedKernelXYElt);

/// A circle of a plane: centre and radius in pixels, from the centre of the first pixel; `Value` is that of the accumulator
/// at the centre.
ORVIK_RECORD(HoughCircle2dPpties, (double, X)(double, Y)(double, Radius)(double, Value));
ORVIK_RECORD_COLL(HoughCircles2dPpties, HoughCircle2dPpties);
ORVIK_PLAN_INDEXED(PlanIndexedHoughCircles2dPpties, HoughCircles2dPpties);

/// A place on the shells about a centre: its offset in voxels, its direction, its exact radius, and how many places its shell,
/// that of the same radius rounded, counts for.
ORVIK_RECORD(HoughSpheresKernelXYZElt, (long, OffsetX)(long, OffsetY)(long, OffsetZ)(float, UnitX)(float, UnitY)(float, UnitZ)
                                       (float, Radius)(unsigned long, NbPts));
ORVIK_RECORD_COLL(HoughSpheresKernelXYZ, HoughSpheresKernelXYZElt);

/// A sphere of a volume: centre and radius in voxels, from the centre of the first voxel; `Value` is that of the accumulator
/// at the centre. Lists of them per volume are filed under z 0.
ORVIK_RECORD(HoughSphere3dPpties, (double, X)(double, Y)(double, Z)(double, Radius)(double, Value));
ORVIK_RECORD_COLL(HoughSpheres3dPpties, HoughSphere3dPpties);
ORVIK_PLAN_INDEXED(PlanIndexedHoughSpheres3dPpties, HoughSpheres3dPpties);

/// Which peaks of an accumulator count: those from `AbsoluteThreshold` on, and from that share of the greatest value on.
ORVIK_RECORD(AccumIntensityThreshold, (double, AbsoluteThreshold)(double, RatioOfMax));
/// From half of the greatest value on.
ORVIK_API boost::shared_ptr<AccumIntensityThreshold> createAccumIntensityThreshold();

/// Whether features that are too close to a stronger one are left out. Two circles are too close when their centres are
/// nearer than the larger radius plus (DistanceFactor - 1) times the smaller one: with 1 a centre lies within the larger
/// circle, with 2 the discs overlap.
ORVIK_RECORD(RemoveTooCloseCirclesParams, (bool, Enabled)(double, DistanceFactor));
/// Enabled, factor 1.
ORVIK_API boost::shared_ptr<RemoveTooCloseCirclesParams> createRemoveTooCloseCirclesParams();

}}}  // namespace orvik::imaproc::attr
