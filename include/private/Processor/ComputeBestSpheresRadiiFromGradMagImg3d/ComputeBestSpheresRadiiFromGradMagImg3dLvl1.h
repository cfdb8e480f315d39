#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ComputeBestSpheresRadiiFromGradMagImg3dLvl1;

/// Finds for each centre the whole radius whose shell carries most gradient along the radius.
///
/// The score of radius r is the mean over the places of its shell, see houghSpheres3dImg, of w * |g|, with
/// w = (d - cos(maxAngle)) / (1 - cos(maxAngle)) where that is above 0 and 0 otherwise: 1 when the gradient lies on the
/// radius, 0 at the greatest angle. Of equal scores the smaller radius is taken; where none is above 0, the smallest.
///
/// @param inGx, inGy, inGz  one volume of the gradient, of equal size and type, any of the eleven types; reads 0 outside.
/// @param circleIntensityType, maxAngleWithGradDir  as for houghSpheres3dImg; an angle of 0 gives the smallest radius.
/// @param nbMaxPtsPerCircle  changes nothing: shells are not thinned, and means are over all their places.
/// @param radiusRange  the radii that are tried, whole voxels, taken as they stand: nothing is narrowed to the volume.
/// @param centers  whose columns, lines and slices are rounded to the nearest voxel, halves up. Centres may repeat.
/// @param outPpties  is given a sphere for each centre, in their order, with its place and value; the places of centres that
/// lie outside the volume, or are no numbers, stay empty pointers.
/// @throws processor::ORVIKBaseProcessingException  for null arguments, a greatest radius below 0, shells that take more memory
/// than there is; sizes or types that differ end the run in words.
/// Cost: centres * places of all shells, about 5 ns each.
ORVIK_API void computeBestSpheresRadiiFromGradMagImg3d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const attr::eCircleIntensityType& circleIntensityType, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle, const ConstPtr<attr::Voxels3d>& centers,
    const Ptr<attr::HoughSpheres3dPpties>& outPpties);
/// The same in the background.
ORVIK_API Ptr<ComputeBestSpheresRadiiFromGradMagImg3dLvl1> computeBestSpheresRadiiFromGradMagImg3d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const attr::eCircleIntensityType& circleIntensityType, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle, const ConstPtr<attr::Voxels3d>& centers,
    const Ptr<attr::HoughSpheres3dPpties>& outPpties);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::HoughSpheres3dPpties> getAsyncProcessorOutput(
    Ptr<ComputeBestSpheresRadiiFromGradMagImg3dLvl1> processor);

/// Level 1: a single volume, cut into strips that own the centres in their slices. Nothing looks at `InNbCircles`.
class ORVIK_API ComputeBestSpheresRadiiFromGradMagImg3dLvl1
    : public processor::Processor<ComputeBestSpheresRadiiFromGradMagImg3dLvl1, processor::BaseAsync1Processor,
                                  attr::InGxGreyImg3d, attr::InGyGreyImg3d, attr::InGzGreyImg3d,
                                  attr::InOptCircleIntensityType, attr::InNbCircles, attr::InMaxAngleWithGradDir,
                                  attr::InNbMaxPtsPerCircle, attr::InHoughSpheres3dCenters, attr::InHoughCirclesRadiusRange,
                                  attr::OutHoughSpheres3dPpties>
{
    ORVIK_PROCESSOR(ComputeBestSpheresRadiiFromGradMagImg3dLvl1, 10)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::ResultsOfStrips<attr::HoughSpheres3dPpties> m_results;
    processor::RecordsOfStrips<attr::Voxels3d> m_centers;
};

}}}  // namespace orvik::imaproc::fd
