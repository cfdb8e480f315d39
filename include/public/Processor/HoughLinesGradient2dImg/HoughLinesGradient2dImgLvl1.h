#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLinesGradient2dImgLvl1;

/// Counts the votes of gradients for the lines that they are across.
///
/// As houghLines2dImg, but a pixel votes with the magnitude of its gradient, where that is above PixelThreshold, and only for
/// the angles theta within a tolerance of the gradient's own: a line has as its normal the direction in which values rise.
/// So theta and theta + pi are two lines, the two sides of a bar. The window of angles crosses from pi to -pi.
/// A tolerance of pi or more votes for 0 to pi whatever the gradient, deliberately not for the whole turn; a negative one
/// for all but the window.
/// After O'Gorman, Clowes, "Finding picture edges through collinearity of feature points", IEEE Trans. Computers 25(4), 1976.
///
/// @param gx, gy  gradient, X by Y samples per plane, of equal size and type, any of the eleven types.
/// @param params  bins and voters, see attr::HoughLinesGradientImgParams. Null or not given: 1 pixel, 360 angles from -pi to
/// pi, gradients above 0. A gradient that is no number does not vote. A range that runs downwards has no votes.
/// @param tolerance  radians, a number. Default: 0.1.
/// @return the accumulator: distances rho from the centre pixel (X / 2, Y / 2) along x, angles along y, planes as those of the
/// gradient; float, in units of the gradient. Shares beyond the first and last column are dropped.
/// @throws processor::ORVIKBaseProcessingException  for null images, sizes or types that differ, a tolerance that is no
/// number, an accumulator without bins or with more than 2147483647 of them along an axis; the text names the attribute and
/// both values. std::bad_alloc with the size that there is no memory for.
/// Cost: a pass over the gradient, and about 5 ns for each angle of each voter. The same votes for any number of threads and
/// any strips up to the rounding of sums. Instruction sets compute the direction by an approximation of their own, within
/// some 3e-7 radians, so a voter at the limit of its window may have one angle more or less.
ORVIK_API ImagePtr houghLinesGradient2dImg(const ConstImagePtr& gx, const ConstImagePtr& gy,
                                           const ConstPtr<attr::HoughLinesGradientImgParams>& params, float tolerance);
ORVIK_API ImagePtr houghLinesGradient2dImg(const ConstImagePtr& gx, const ConstImagePtr& gy);

/// The same in the background; the accumulator is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughLinesGradient2dImgLvl1> houghLinesGradient2dImg_async(const ConstImagePtr& gx, const ConstImagePtr& gy);
ORVIK_API Ptr<HoughLinesGradient2dImgLvl1> houghLinesGradient2dImg_async(
    const ConstImagePtr& gx, const ConstImagePtr& gy, const ConstPtr<attr::HoughLinesGradientImgParams>& params,
    float tolerance);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HoughLinesGradient2dImgLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API HoughLinesGradient2dImgLvl1
    : public processor::Processor<HoughLinesGradient2dImgLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InOptHoughLinesGradientImgParams,
                                  attr::InOptHoughLinesOrientationTolerance, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughLinesGradient2dImgLvl1, 58)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
