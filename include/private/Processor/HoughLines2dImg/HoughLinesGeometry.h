#pragma once

#include "frame/attr/Records.h"
#include "frame/image/BaseImage.h"

namespace orvik { namespace imaproc { namespace fd {

// How the accumulator of a plane's lines is laid out: columns are distances rho from the plane's centre, rows are angles.

/// Bins on either side of rho 0, a whole number. Not an integer, since steps that make no sense make it huge, infinite,
/// negative or NaN.
double halfRhoOf(unsigned long sizeX, unsigned long sizeY, double rhoStep);

/// Columns. Steps that make no sense count as 1; what integers do not hold becomes 2^63, which no image has.
unsigned long accumulatorSizeX(const image::BaseImage& plane, const attr::HoughLinesImgParams& params);

/// Whether the angles cover all directions, so that what lies beyond the last row is the first one, mirrored.
bool isCyclic(const attr::HoughLinesImgParams& params);

/// Rows, with those that continue a cyclic range.
unsigned long accumulatorSizeY(const attr::HoughLinesImgParams& params, const attr::HoughLinesExtractionParams& extraction);

/// Angle between two rows, in radians.
double thetaStepOf(const attr::HoughLinesImgParams& params);

}}}  // namespace orvik::imaproc::fd
