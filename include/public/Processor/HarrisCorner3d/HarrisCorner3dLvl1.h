#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HarrisCorner3dLvl1;

/// Lists the corners of a volume: the local maxima of its corner response (see harrisCorner3dImg), the strongest first.
///
/// A voxel is a corner when no response in the box of 2 * distance + 1 columns, lines and slices about it is larger; of
/// equal ones the first in scan order stays. After C. Harris, M. Stephens, "A combined corner and edge detector", Alvey
/// Vision Conference, 1988.
///
/// @param inImg3d  one volume of X by Y by Z samples, any of the eleven types. Spacing is not looked at.
/// @param maxNbCorners  most corners that are listed; 0 lists none.
/// @param featuresDist  half-size of the box along all axes in voxels; 0 looks at no neighbours: every voxel is listed.
/// What exceeds the volume, however far, means all of it.
/// @return column, line and slice of the centres of the voxels, whole numbers, and as value the response, in units of the
/// squared sample per squared voxel. The gradient has standard deviation 1 voxel and coverage 4, the measure is that of
/// Harris with k = 0.005, and there is no threshold: in a volume with few corners, faint ones, voxels where nothing changes
/// and such below 0 are listed.
/// @throws processor::ORVIKBaseProcessingException  before any work: for a null image, an image of several channels or times
/// (use the multiSlice_ form), a deviation or coverage that makes no kernel; the text names the attributes and their values.
/// Cost: that of harrisCorner3dImg and of extractLocalExtrema3d; six float images while it runs. The same list for any
/// strips, threads and instruction set, as far as harrisCorner3dImg gives the same.
ORVIK_API Ptr<attr::Voxels3d> harrisCorner3d(const ConstImagePtr& inImg3d, unsigned long maxNbCorners,
                                             unsigned int featuresDist);

/// The same with a standard deviation for gradient and smoothing, in voxels along each axis, finite and above 0.
ORVIK_API Ptr<attr::Voxels3d> harrisCorner3d(const ConstImagePtr& inImg3d, float inOptGradStdDev, unsigned long maxNbCorners,
                                             unsigned int featuresDist);

/// The same with all that can be chosen.
///
/// @param inOptGradientGaussianCoverage, inOptCornerDetectionParams  as for harrisCorner3dImg; null for the defaults.
/// @param threshold  least response that is listed: of the smallest eigenvalue itself, of the cube root of the Harris measure,
/// in units of the squared sample per squared voxel. Compared as a 32-bit float. Where nothing changes the cube root is 0.0049:
/// a threshold of 0 keeps such voxels.
/// @param featuresDistX, featuresDistY, featuresDistZ  half-size of the box along each axis.
ORVIK_API Ptr<attr::Voxels3d> harrisCorner3d(const ConstImagePtr& inImg3d, float inOptGradStdDev,
                                             const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
                                             const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams,
                                             unsigned long maxNbCorners, double threshold, unsigned int featuresDistX,
                                             unsigned int featuresDistY, unsigned int featuresDistZ);

/// The same in the background; the list is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HarrisCorner3dLvl1> harrisCorner3d_async(const ConstImagePtr& inImg3d, unsigned long maxNbCorners,
                                                       unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner3dLvl1> harrisCorner3d_async(const ConstImagePtr& inImg3d, float inOptGradStdDev,
                                                       unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner3dLvl1> harrisCorner3d_async(
    const ConstImagePtr& inImg3d, float inOptGradStdDev,
    const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY, unsigned int featuresDistZ);

/// The same for an image of any number of volumes: a list for each (c, t), with z 0, each with at most `maxNbCorners`.
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> multiSlice_harrisCorner3d(const ConstImagePtr& inImg3d, unsigned long maxNbCorners,
                                                                   unsigned int featuresDist);
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> multiSlice_harrisCorner3d(const ConstImagePtr& inImg3d, float inOptGradStdDev,
                                                                   unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> multiSlice_harrisCorner3d(
    const ConstImagePtr& inImg3d, float inOptGradStdDev,
    const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY, unsigned int featuresDistZ);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HarrisCorner3dLvl1> multiSlice_harrisCorner3d_async(const ConstImagePtr& inImg3d, unsigned long maxNbCorners,
                                                                  unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner3dLvl1> multiSlice_harrisCorner3d_async(const ConstImagePtr& inImg3d, float inOptGradStdDev,
                                                                  unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner3dLvl1> multiSlice_harrisCorner3d_async(
    const ConstImagePtr& inImg3d, float inOptGradStdDev,
    const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY, unsigned int featuresDistZ);

/// Wait for the end. The first gives the list of volume (0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::Voxels3d> getAsyncProcessorOutput(Ptr<HarrisCorner3dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> getAsyncProcessorMultiSliceOutput(Ptr<HarrisCorner3dLvl1> processor);

/// Level 1: whole images, one child per volume. The first working image holds the response at the end. The fourth to sixth may
/// be the input; otherwise images share no memory.
class ORVIK_API HarrisCorner3dLvl1
    : public processor::Processor<HarrisCorner3dLvl1, processor::BaseAsync1Processor, attr::InImg3d, attr::InOptGradStdDev,
                                  attr::InOptGradientGaussianCoverage, attr::InOptCornerDetectionParams3d,
                                  attr::InLocalExtremaConfig, attr::InFeaturesDistX, attr::InFeaturesDistY,
                                  attr::InFeaturesDistZ, attr::OutWk1Img, attr::OutWk2Img, attr::OutWk3Img, attr::OutWk4Img,
                                  attr::OutWk5Img, attr::OutWk6Img, attr::OutPIVoxels3d>
{
    ORVIK_PROCESSOR(HarrisCorner3dLvl1, 40)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
