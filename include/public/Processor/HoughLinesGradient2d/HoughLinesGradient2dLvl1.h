#pragma once

#include "Processor/HoughLines2d/HoughLines2dLvl1.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLinesGradient2dLvl1;

/// Lists the lines of a gradient.
///
/// Votes for lines are counted as by houghLinesGradient2dImg, the lines are found among them as by houghLines2d, with a turn
/// that is twice as long: a line and its opposite, of theta + pi and -rho, are two, the sides of a bar. Where the angles cover
/// -pi to pi or more, the accumulator goes on for 2 * PeakDist rows with the first ones, mirrored along rho as those of
/// houghLines2d are, although a whole turn later the rows are the same: peaks near the ends of the range may be told apart
/// that are one, and peaks of these rows come out with rho mirrored. A range from 0 to pi is not continued.
///
/// @param gx, gy  gradient, one plane, of equal size and type, any of the eleven types.
/// @param imgParams  bins and voters, see attr::HoughLinesGradientImgParams; null or not given: 1 pixel, 360 angles from -pi
/// to pi, gradients above 0.
/// @param extrParams  which bins are lines, see houghLines2d; null or not given: those with at least half of the votes of the
/// highest one, none higher within 10 bins.
/// @param tolerance  radians, a number; see houghLinesGradient2dImg. Default: 0.1.
/// @return the lines, those with most votes first, and the accumulator with the rows that go on, in floats. A line has
/// x * cos(Theta) + y * sin(Theta) = Rho, from the centre of the first pixel of the plane, in pixels; values rise in the
/// direction of Theta, which is fmod(its row's angle, 2 pi) where the angles cover all directions.
/// @throws processor::ORVIKBaseProcessingException  for a null image, sizes or types that differ, an image of several planes
/// (use the multiSlice_ form), a tolerance that is no number, an accumulator without bins or with more than 2147483647 of them
/// along an axis; the text has both values. std::bad_alloc with the size that there is no memory for.
/// Cost: that of houghLinesGradient2dImg, and some passes over the accumulator. Sums depend on the order of strips with
/// several threads, and with them the order of lines that are as high up to rounding.
ORVIK_API HoughLines2dResult houghLinesGradient2d(const ConstImagePtr& gx, const ConstImagePtr& gy,
                                                  const ConstPtr<attr::HoughLinesGradientImgParams>& imgParams,
                                                  const ConstPtr<attr::HoughLinesExtractionParams>& extrParams,
                                                  float tolerance);
ORVIK_API HoughLines2dResult houghLinesGradient2d(const ConstImagePtr& gx, const ConstImagePtr& gy);

/// The same in the background; lines and accumulator are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughLinesGradient2dLvl1> houghLinesGradient2d_async(const ConstImagePtr& gx, const ConstImagePtr& gy);
ORVIK_API Ptr<HoughLinesGradient2dLvl1> houghLinesGradient2d_async(
    const ConstImagePtr& gx, const ConstImagePtr& gy, const ConstPtr<attr::HoughLinesGradientImgParams>& imgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& extrParams, float tolerance);

/// The same for gradients of any number of planes: a list for each (z, c, t).
ORVIK_API MultiSliceHoughLines2dResult multiSlice_houghLinesGradient2d(const ConstImagePtr& gx, const ConstImagePtr& gy);
ORVIK_API MultiSliceHoughLines2dResult multiSlice_houghLinesGradient2d(
    const ConstImagePtr& gx, const ConstImagePtr& gy, const ConstPtr<attr::HoughLinesGradientImgParams>& imgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& extrParams, float tolerance);

/// The same in the background; lists and accumulator are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HoughLinesGradient2dLvl1> multiSlice_houghLinesGradient2d_async(const ConstImagePtr& gx,
                                                                              const ConstImagePtr& gy);
ORVIK_API Ptr<HoughLinesGradient2dLvl1> multiSlice_houghLinesGradient2d_async(
    const ConstImagePtr& gx, const ConstImagePtr& gy, const ConstPtr<attr::HoughLinesGradientImgParams>& imgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& extrParams, float tolerance);

/// Wait for the end. The first gives the lines of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API HoughLines2dResult getAsyncProcessorOutput(Ptr<HoughLinesGradient2dLvl1> processor);
ORVIK_API MultiSliceHoughLines2dResult getAsyncProcessorMultiSliceOutput(Ptr<HoughLinesGradient2dLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API HoughLinesGradient2dLvl1
    : public processor::Processor<HoughLinesGradient2dLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InOptHoughLinesGradientImgParams,
                                  attr::InOptHoughLinesOrientationTolerance, attr::InOptHoughLinesExtractionParams,
                                  attr::OutOptRealImg, attr::OutPIHoughLines2dPpties>
{
    ORVIK_PROCESSOR(HoughLinesGradient2dLvl1, 61)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
