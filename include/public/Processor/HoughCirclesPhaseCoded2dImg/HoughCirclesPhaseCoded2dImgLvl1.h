#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

#include <utility>

namespace orvik { namespace imaproc { namespace fd {

class HoughCirclesPhaseCoded2dImgLvl1;

/// Scores each pixel as the centre of a circle by a complex number, whose modulus tells the support, whose angle the radius.
///
/// As houghCircles2dImg, but what a place adds is multiplied by exp(2 pi i * (f - m) / (R - m)), with its exact distance f
/// from the centre and the radii m to R that are looked for: the angle runs from 0 to a whole turn over the range, so that
/// its ends meet, and concentric circles take from each other. A single radius, m = R, divides by zero: such an image is of
/// NaN. A gradient of NaN, or an angle that is no number, counts: it makes NaN of all pixels whose rings reach it.
/// After Atherton, Kerbyson, "Size invariant circle detection", Image and Vision Computing 17(11), 1999.
///
/// @param outRealImg, outImImg  X by Y per plane, float, in units of the gradient.
/// Other parameters, refusals and cost as for houghCircles2dImg, cost about twice. The same bits for any strips, threads and
/// instruction set. The form without images returns new ones: the real and the imaginary part.
ORVIK_API void houghCirclesPhaseCoded2dImg(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                           const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                           const attr::eCircleIntensityType& circleIntensityType, double maxAngleWithGradDir,
                                           unsigned int nbMaxPtsPerCircle, const ImagePtr& outRealImg,
                                           const ImagePtr& outImImg);
ORVIK_API std::pair<ImagePtr, ImagePtr> houghCirclesPhaseCoded2dImg(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same in the background; the parts are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughCirclesPhaseCoded2dImgLvl1> houghCirclesPhaseCoded2dImg_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCirclesPhaseCoded2dImgLvl1> houghCirclesPhaseCoded2dImg_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ImagePtr& outRealImg, const ImagePtr& outImImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API std::pair<ImagePtr, ImagePtr> getAsyncProcessorOutput(Ptr<HoughCirclesPhaseCoded2dImgLvl1> processor);

/// Level 1: makes the rings and their phases once, one child per plane.
class ORVIK_API HoughCirclesPhaseCoded2dImgLvl1
    : public processor::Processor<HoughCirclesPhaseCoded2dImgLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InOptCircleIntensityType, attr::InOptMaxAngleWithGradDir,
                                  attr::InOptNbMaxPtsPerCircle, attr::InOptHoughCirclesRadiusRange, attr::OutComplexRealImg,
                                  attr::OutComplexImImg>
{
    ORVIK_PROCESSOR(HoughCirclesPhaseCoded2dImgLvl1, 48)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
