#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughSpheres3dImgLvl1;

/// Scores each voxel as the centre of a sphere, from the gradient on shells about it.
///
/// out(x, y, z) = sum over places k of d(k) * |g(k)| / n(r(k)), where d(k) is the unit gradient at (x, y, z) + k projected on
/// the unit vector of k, |g(k)| its magnitude, and n(r) the number of voxels whose distance from the centre is r or more, and
/// below r + 1: each shell weighs the same, whatever its size. The places are those whose distance, cut off and rounded, lies
/// within the radii both times; a place counts for the shell of its distance rounded. Gradients of a magnitude below 2^-23
/// count as they are.
/// After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975, in three dimensions.
///
/// @param inGx, inGy, inGz  gradient per voxel along x, y and z, X by Y by Z samples per volume, of equal size and type, any of
/// the eleven types; reads 0 outside the volume, so spheres that the border cuts score lower. Spacing is not looked at: spheres
/// are those of the grid.
/// @param radiusRange  whole voxels, from 1 on; narrowed silently to half of the smallest side. Null: from 1 to that half. A
/// range without radii gives zeros; a greatest radius below 0 is refused; radius 0 has no direction and scores 0.
/// @param circleIntensityType  which gradient counts: outward d (dark spheres), inward -d (bright ones), both |d|.
/// Default: both.
/// @param maxAngleWithGradDir  radians: places whose gradient lies farther from the radius add nothing. The score is flat
/// within radius * sin(angle) of a centre, so small angles place centres sharply. 0 gives zeros; beyond pi / 2 gradients that
/// point away count as well, negatively. No number: nothing counts. Default: 0.1.
/// @param nbMaxPtsPerCircle  the most voxels that a shell counts for: n(r) is no larger, so that scores grow with what is
/// beyond. No place is left out for it, unlike those of circles; with 0 scores are infinite or NaN. Default: no limit.
/// @param outImg  X by Y by Z per volume, float, in units of the gradient; every voxel is written, or none when the call is
/// refused. An infinite gradient makes NaN of all voxels whose shells reach it; one that is NaN adds nothing.
/// @throws processor::ORVIKBaseProcessingException  for null images, sizes or types that differ, an outImg that is not of
/// floats or shares memory with an input, shells that take more memory than there is; the text names the attribute and both
/// values.
/// Cost: X * Y * Z * places * (about 0.1 ns with AVX-512), or for small angles that of the places that a gradient points to, a
/// twentieth of it; places grow with the cube of the radius, so the range decides. Memory per strip of slices: some more than
/// 2 * radius + 1 slices of scores, each 2 * radius lines higher and wider, or for wide angles 2 * radius + 1 slices of four
/// floats a voxel; for all strips the list of places, some 150 bytes each, and lists of directions. The same bits for any
/// strips, threads and instruction set.
ORVIK_API void houghSpheres3dImg(const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
                                 const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                 const attr::eCircleIntensityType& circleIntensityType, double maxAngleWithGradDir,
                                 unsigned int nbMaxPtsPerCircle, const ImagePtr& outImg);
ORVIK_API ImagePtr houghSpheres3dImg(const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
                                     const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same in the background; the scores are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughSpheres3dImgLvl1> houghSpheres3dImg_async(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                             const ConstImagePtr& inGz,
                                                             const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughSpheres3dImgLvl1> houghSpheres3dImg_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const attr::eCircleIntensityType& circleIntensityType,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle, const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HoughSpheres3dImgLvl1> processor);

/// Level 1: makes the shells once, one child per volume.
class ORVIK_API HoughSpheres3dImgLvl1
    : public processor::Processor<HoughSpheres3dImgLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg3d,
                                  attr::InGyGreyImg3d, attr::InGzGreyImg3d, attr::InOptCircleIntensityType,
                                  attr::InOptMaxAngleWithGradDir, attr::InOptNbMaxPtsPerCircle,
                                  attr::InOptHoughCirclesRadiusRange, attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughSpheres3dImgLvl1, 66)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
