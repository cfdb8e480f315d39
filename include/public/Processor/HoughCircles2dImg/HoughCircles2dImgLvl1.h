#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughCircles2dImgLvl1;

/// Scores each pixel as the centre of a circle, from the gradient on rings about it.
///
/// out(x, y) = sum over places k of d(k) * |g(k)| / n(r(k)), where d(k) is the unit gradient at (x, y) + k projected on the
/// unit vector of k, |g(k)| its magnitude, and n(r) the number of places that the ring of whole radius r has: each ring
/// weighs the same, whatever its length. The ring of radius r has the pixels whose distance from the centre is r or more,
/// and below r + 1. Gradients of a magnitude below 2^-23 count as they are.
/// After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975, in gather form.
///
/// @param inGx, inGy  gradient, X by Y samples per plane, of equal size and type, any of the eleven types; reads 0 outside
/// the image, so circles that the border cuts score lower.
/// @param radiusRange  whole pixels, from 1 on; narrowed silently to half of the smaller side. Null: from 1 to that half. A
/// range without radii gives a zero image; a greatest radius below 0 is refused; radius 0 has no direction and scores 0.
/// @param circleIntensityType  which gradient counts: outward d (dark circles), inward -d (bright ones), both |d|.
/// Default: both.
/// @param maxAngleWithGradDir  radians: places whose gradient lies farther from the radius add nothing. The score is flat
/// within radius * sin(angle) of a centre, so small angles place centres sharply. 0 gives a zero image; beyond pi / 2
/// gradients that point away count as well, negatively. No number: nothing counts. Default: 0.1.
/// @param nbMaxPtsPerCircle  places that rings are thinned to, spread evenly over the angle; 0 gives a zero image. Default:
/// all.
/// @param outImg  X by Y per plane, float, in units of the gradient; every pixel is written, or none when the call is
/// refused. An infinite gradient makes NaN of all pixels whose rings reach it; one that is NaN adds nothing.
/// @throws processor::ORVIKBaseProcessingException  for null images, sizes or types that differ, an outImg that is not of
/// floats or shares memory with an input, rings that take more memory than there is; the text names the attribute and both
/// values.
/// Cost: X * Y * places * (about 0.1 ns with AVX-512), or for small angles that of the places that a gradient points to,
/// a fifth to a tenth of it; memory for 4 * radius lines per thread, the list of places, and tables of some ten places
/// each. The same bits for any strips, threads and instruction set.
ORVIK_API void houghCircles2dImg(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                 const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                 const attr::eCircleIntensityType& circleIntensityType, double maxAngleWithGradDir,
                                 unsigned int nbMaxPtsPerCircle, const ImagePtr& outImg);
ORVIK_API ImagePtr houghCircles2dImg(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                     const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same in the background; the scores are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughCircles2dImgLvl1> houghCircles2dImg_async(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                             const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCircles2dImgLvl1> houghCircles2dImg_async(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                             const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                             const attr::eCircleIntensityType& circleIntensityType,
                                                             double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
                                                             const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HoughCircles2dImgLvl1> processor);

/// Level 1: makes the rings once, one child per plane.
class ORVIK_API HoughCircles2dImgLvl1
    : public processor::Processor<HoughCircles2dImgLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InOptCircleIntensityType, attr::InOptMaxAngleWithGradDir,
                                  attr::InOptNbMaxPtsPerCircle, attr::InOptHoughCirclesRadiusRange, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughCircles2dImgLvl1, 43)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
