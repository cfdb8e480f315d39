#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ComputeBestCirclesRadiiFromGradMagImg2dLvl1;

/// Finds for each centre the whole radius whose ring carries most gradient along the radius.
///
/// The score of radius r is the mean over the places of its ring, see houghCircles2dImg, of w * |g|, with
/// w = (d - cos(maxAngle)) / (1 - cos(maxAngle)) where that is above 0 and 0 otherwise: 1 when the gradient lies on the
/// radius, 0 at the greatest angle. Of equal scores the smaller radius is taken; where none is above 0, the smallest.
///
/// @param inGx, inGy  one plane of the gradient, of equal size and type, any of the eleven types; reads 0 outside the image.
/// @param circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle  as for houghCircles2dImg; an angle of 0 gives the
/// smallest radius.
/// @param radiusRange  the radii that are tried, whole pixels, taken as they stand: nothing is narrowed to the image.
/// @param centers  whose columns and lines are rounded to the nearest pixel, halves up. Centres may repeat.
/// @param outPpties  is given a circle for each centre, in their order, with its place and value; the places of centres that
/// lie outside the image, or are no numbers, stay empty pointers.
/// @throws processor::ORVIKBaseProcessingException  for null arguments, a greatest radius below 0, rings that take more memory
/// than there is; sizes or types that differ end the run in words.
/// Cost: centres * places of all rings, about 3 ns each; lines without a centre are only read.
ORVIK_API void computeBestCirclesRadiiFromGradMagImg2d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const attr::eCircleIntensityType& circleIntensityType,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::Pixels2d>& centers, const Ptr<attr::HoughCircles2dPpties>& outPpties);
/// The same in the background.
ORVIK_API Ptr<ComputeBestCirclesRadiiFromGradMagImg2dLvl1> computeBestCirclesRadiiFromGradMagImg2d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const attr::eCircleIntensityType& circleIntensityType,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::Pixels2d>& centers, const Ptr<attr::HoughCircles2dPpties>& outPpties);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::HoughCircles2dPpties> getAsyncProcessorOutput(
    Ptr<ComputeBestCirclesRadiiFromGradMagImg2dLvl1> processor);

/// Level 1: a single plane, cut into strips that own the centres on their lines.
class ORVIK_API ComputeBestCirclesRadiiFromGradMagImg2dLvl1
    : public processor::Processor<ComputeBestCirclesRadiiFromGradMagImg2dLvl1, processor::BaseAsync1Processor,
                                  attr::InGxSingleGreyImg2d, attr::InGySingleGreyImg2d, attr::InOptCircleIntensityType,
                                  attr::InMaxAngleWithGradDir, attr::InNbMaxPtsPerCircle, attr::InHoughCircles2dCenters,
                                  attr::InHoughCirclesRadiusRange, attr::OutHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(ComputeBestCirclesRadiiFromGradMagImg2dLvl1, 6)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::ResultsOfStrips<attr::HoughCircles2dPpties> m_results;
    processor::RecordsOfStrips<attr::Pixels2d> m_centers;
};

}}}  // namespace orvik::imaproc::fd
