#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughSpheres3dLvl1;

/// Lists the spheres of a volume.
///
/// Voxels are scored as centres by houghSpheres3dImg, from gradients that are given or made of a grey volume. A centre is a
/// voxel whose score is above that of its 26 neighbours and not below max(AbsoluteThreshold, RatioOfMax * greatest score of
/// the volume). Its radius is the whole one whose shell carries most gradient along the radius. Then each sphere that is too
/// close to an earlier, stronger one goes, see attr::RemoveTooCloseCirclesParams.
/// After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975, in three dimensions.
///
/// @param inGx, inGy, inGz  gradient along x, y and z, of equal size and type, any of the eleven; of several volumes the first
/// one is looked at.
/// @param radiusRange  whole voxels, from 1 on; narrowed silently to half of the smallest side. Null: from 1 to that half.
/// @param circleIntensityType  outward: dark spheres, inward: bright ones, both. Default: both.
/// @param nbCircles  changes nothing, whatever it is.
/// @param maxAngleWithGradDir  radians between gradient and radius; see houghSpheres3dImg. Default: 0.1.
/// @param nbMaxPtsPerCircle  the most voxels that a shell counts for; see houghSpheres3dImg. With 0 scores are no numbers or
/// infinite, and nothing is found. Default: no limit.
/// @param accumIntensityThreshold  null or not given: from half of the greatest score on. NaN as the absolute threshold gives
/// no spheres, NaN as the ratio counts as none.
/// @param removeTooCloseCirclesParams  null or not given: spheres whose centre lies in a stronger one are removed.
/// @param outImg  is given the scores: as large as the volumes, float. May be null.
/// @return the spheres, the strongest first, in voxels from the centre of the first voxel of the volume; their value is the
/// score of their centre.
/// @throws processor::ORVIKBaseProcessingException  for a null image, only a part of a gradient, or gradients beside an image,
/// sizes or types that differ, results that are not of floats or share memory, a greatest radius below 0, shells that take
/// more memory than there is; the text names the attribute and both values.
/// Cost: that of the scores, a few passes over them, and that of computeBestSpheresRadiiFromGradMagImg3d; removing grows with
/// the square of the number of spheres. The same spheres for any strips, threads and instruction set.
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const attr::eCircleIntensityType& circleIntensityType,
    unsigned long nbCircles, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg);
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                         const ConstImagePtr& inGz,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same, from the gradients of a grey volume by Gaussian derivatives of standard deviation 1.
///
/// @param inImg  any of the eleven types; of several volumes the first one is looked at.
/// Other parameters as above.
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned long nbCircles, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(const ConstImagePtr& inImg,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                         const attr::eCircleIntensityType& circleIntensityType,
                                                         unsigned long nbCircles);
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(const ConstImagePtr& inImg,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                         const attr::eCircleIntensityType& circleIntensityType);
ORVIK_API Ptr<attr::HoughSpheres3dPpties> houghSpheres3d(const ConstImagePtr& inImg,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same in the background; the spheres are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(const ConstImagePtr& inImg,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(const ConstImagePtr& inImg,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                       const attr::eCircleIntensityType& circleIntensityType);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(const ConstImagePtr& inImg,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                       const attr::eCircleIntensityType& circleIntensityType,
                                                       unsigned long nbCircles);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned long nbCircles, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                       const ConstImagePtr& inGz,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughSpheres3dLvl1> houghSpheres3d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const attr::eCircleIntensityType& circleIntensityType,
    unsigned long nbCircles, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg);

/// The same for images of any number of volumes: a list for each (0, c, t), each with its own greatest score.
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned long nbCircles);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned long nbCircles, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> multiSlice_houghSpheres3d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const attr::eCircleIntensityType& circleIntensityType,
    unsigned long nbCircles, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(const ConstImagePtr& inImg,
                                                                  const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                                  const attr::eCircleIntensityType& circleIntensityType);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(const ConstImagePtr& inImg,
                                                                  const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                                                  const attr::eCircleIntensityType& circleIntensityType,
                                                                  unsigned long nbCircles);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned long nbCircles, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughSpheres3dLvl1> multiSlice_houghSpheres3d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstImagePtr& inGz,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const attr::eCircleIntensityType& circleIntensityType,
    unsigned long nbCircles, double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg);

/// Wait for the end. The first gives the spheres of volume (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::HoughSpheres3dPpties> getAsyncProcessorOutput(Ptr<HoughSpheres3dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedHoughSpheres3dPpties> getAsyncProcessorMultiSliceOutput(Ptr<HoughSpheres3dLvl1> processor);

/// Level 1: whole images. Makes gradients where they are not given, then one child per volume. `OutOptRealImg2` is never
/// written, whatever it is given.
class ORVIK_API HoughSpheres3dLvl1
    : public processor::Processor<HoughSpheres3dLvl1, processor::BaseAsync2Processor, attr::InOptGreyImg3d,
                                  attr::InOptGxGreyImg3d, attr::InOptGyGreyImg3d, attr::InOptGzGreyImg3d,
                                  attr::InOptCircleIntensityType, attr::InOptNbCircles, attr::InOptMaxAngleWithGradDir,
                                  attr::InOptNbMaxPtsPerCircle, attr::InOptHoughCirclesRadiusRange,
                                  attr::InOptAccumIntensityThreshold, attr::InOptRemoveTooCloseCirclesParams,
                                  attr::OutOptRealImg1, attr::OutOptRealImg2, attr::OutOptGradXImg3d, attr::OutOptGradYImg3d,
                                  attr::OutOptGradZImg3d, attr::OutPIHoughSpheres3dPpties>
{
    ORVIK_PROCESSOR(HoughSpheres3dLvl1, 69)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

    ConstImagePtr m_gx, m_gy, m_gz;  // in force
};

}}}  // namespace orvik::imaproc::fd
