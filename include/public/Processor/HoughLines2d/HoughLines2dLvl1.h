#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLines2dLvl1;

/// The lines of a plane and the accumulator that they were found in.
typedef std::pair<Ptr<attr::HoughLines2dPpties>, ImagePtr> HoughLines2dResult;
/// The same for each plane.
typedef std::pair<Ptr<attr::PlanIndexedHoughLines2dPpties>, ImagePtr> MultiSliceHoughLines2dResult;

/// Lists the lines of an image of edges.
///
/// Votes for lines are counted as by houghLines2dImg; a line is a bin that has no higher one within PeakDist bins along
/// rho and along theta, and whose votes reach the threshold. Where the angles cover 0 to pi or more, the accumulator
/// goes on for 2 * PeakDist rows with the first ones, mirrored, since theta + pi is the same line with -rho: a line near
/// angle 0 is listed once. Over a smaller range the bins beside the first and the last row are none.
/// A PeakDist of as many bins as there are angles, or more, sees each bin again in the rows that go on, as high as itself:
/// then no line is left.
///
/// @param inGreyImg  one plane, any of the eleven types: edges as a rule.
/// @param inOptHoughLinesImgParams  bins and voters, see houghLines2dImg; null or not given: its defaults.
/// @param inOptHoughLinesExtractionParams  which bins are lines; null or not given: those with at least half of the votes
/// of the highest one, none higher within 10 bins. A ratio or quantile beyond 0 to 1 is taken as it stands, the quantile
/// as the nearest of both; a threshold that is no number lists nothing. The rows that go on are measured as well.
/// @return the lines, those with most votes first, and the accumulator with the rows that go on, in floats for float
/// images and unsigned 32 bits otherwise. A line has x * cos(Theta) + y * sin(Theta) = Rho, from the centre of the first
/// pixel of the plane, in pixels; Theta is fmod(its row's angle, pi) where the angles cover all directions. Rho and Theta
/// are those of whole bins. Without votes the list is empty, but for accumulators of floats with a threshold of 0 or less.
/// @throws processor::ORVIKBaseProcessingException  for a null image, an image of several planes (use the multiSlice_
/// form), an accumulator without bins or with more than 2147483647 of them along an axis; the text has both values.
/// std::bad_alloc with the size that there is no memory for.
/// Cost: that of houghLines2dImg, and some passes over the accumulator. The same lines for any strips, threads and
/// instruction set where the image is not of floats; sums of floats depend on the order of strips with several threads.
ORVIK_API HoughLines2dResult houghLines2d(const ConstImagePtr& inGreyImg,
                                          const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams,
                                          const ConstPtr<attr::HoughLinesExtractionParams>& inOptHoughLinesExtractionParams);
ORVIK_API HoughLines2dResult houghLines2d(const ConstImagePtr& inGreyImg);

/// The same in the background; lines and accumulator are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughLines2dLvl1> houghLines2d_async(const ConstImagePtr& inGreyImg);
ORVIK_API Ptr<HoughLines2dLvl1> houghLines2d_async(
    const ConstImagePtr& inGreyImg, const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& inOptHoughLinesExtractionParams);

/// The same for an image of any number of planes: a list for each (z, c, t).
ORVIK_API MultiSliceHoughLines2dResult multiSlice_houghLines2d(const ConstImagePtr& inGreyImg);
ORVIK_API MultiSliceHoughLines2dResult multiSlice_houghLines2d(
    const ConstImagePtr& inGreyImg, const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& inOptHoughLinesExtractionParams);

/// The same in the background; lists and accumulator are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HoughLines2dLvl1> multiSlice_houghLines2d_async(const ConstImagePtr& inGreyImg);
ORVIK_API Ptr<HoughLines2dLvl1> multiSlice_houghLines2d_async(
    const ConstImagePtr& inGreyImg, const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams,
    const ConstPtr<attr::HoughLinesExtractionParams>& inOptHoughLinesExtractionParams);

/// Wait for the end. The first gives the lines of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API HoughLines2dResult getAsyncProcessorOutput(Ptr<HoughLines2dLvl1> processor);
ORVIK_API MultiSliceHoughLines2dResult getAsyncProcessorMultiSliceOutput(Ptr<HoughLines2dLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API HoughLines2dLvl1
    : public processor::Processor<HoughLines2dLvl1, processor::BaseAsync1Processor, attr::InGreyImg2d,
                                  attr::InOptHoughLinesImgParams, attr::InOptHoughLinesExtractionParams, attr::OutOptImg,
                                  attr::OutPIHoughLines2dPpties>
{
    ORVIK_PROCESSOR(HoughLines2dLvl1, 55)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
