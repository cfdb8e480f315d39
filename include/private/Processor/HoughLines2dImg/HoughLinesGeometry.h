#pragma once

#include "frame/attr/Records.h"
#include "frame/image/Strips.h"
#include "frame/util/ProcessingResult.h"

#include <string>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

// How the accumulator of a plane's lines is laid out: columns are distances rho from the plane's centre, rows are angles.
// `Params` are those of lines from grey images, HoughLinesImgParams, or from gradients, HoughLinesGradientImgParams.

/// Bins on either side of rho 0, a whole number. Not an integer, since steps that make no sense make it huge, infinite,
/// negative or NaN.
double halfRhoOf(unsigned long sizeX, unsigned long sizeY, double rhoStep);

/// Columns. Steps that make no sense count as 1; what integers do not hold becomes 2^63, which no image has.
template<class Params>
unsigned long accumulatorSizeX(const image::BaseImage& plane, const Params& params);

/// The angle after which lines come again: half a turn for pixels, a whole one for gradients, which have a direction.
double periodOf(const attr::HoughLinesImgParams& params);
double periodOf(const attr::HoughLinesGradientImgParams& params);

/// Whether the angles cover all directions, so that what lies beyond the last row is the first one, mirrored.
bool isCyclic(const attr::HoughLinesImgParams& params);
bool isCyclic(const attr::HoughLinesGradientImgParams& params);

/// Rows of angles.
template<class Params>
unsigned long nbAnglesOf(const Params& params)
{
    return params.template get<typename Params::NbThetaBins>();
}

/// Rows, with those that continue a cyclic range.
template<class Params>
unsigned long accumulatorSizeY(const Params& params, const attr::HoughLinesExtractionParams& extraction);

/// Angle between two rows, in radians.
template<class Params>
double thetaStepOf(const Params& params);

/// What the votes of a strip are computed with.
struct HoughLinesTables
{
    /// Fails, in the name of `who`, when an accumulator has fewer rows than there are angles.
    template<class Params>
    BoolResult init(const std::string& who, const Params& params, const image::BaseImageYStrip2d& strip,
                    const image::BaseImage& accumulator);

    unsigned long nbRows = 0;    // angles
    unsigned long firstRow = 0;  // strips begin at rows of their own, so that they do not wait for each other
    double centre = 0;           // column of rho 0, not below 0; NaN for a step that is none, so that no vote finds a column
    std::vector<float> cosines, sines;  // of each angle, in bins per pixel
};

}}}  // namespace orvik::imaproc::fd
