#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HarrisCorner3dImgLvl1;

/// Measures at each voxel of each volume how much the image changes in every direction, as it does at corners.
///
/// With the structure tensor (xx, xy, xz; xy, yy, yz; xz, yz, zz), the products of the Gaussian gradient smoothed by the same
/// Gaussian:
/// - the Harris measure r, its determinant less k times the cube of its trace, of which the result is the cube root of |r| + 2^-23
///   with the sign of r (plus for 0): so the response has the unit of the squared gradient, and is 0.0049 where nothing changes.
///   Corners are above that, surfaces and straight edges below 0. After C. Harris, M. Stephens, "A combined corner and edge
///   detector", Alvey Vision Conference, 1988.
/// - the smallest eigenvalue, as it is. After O. K. Smith, "Eigenvalues of a symmetric 3 x 3 matrix", CACM 4(4), 1961.
///
/// @param inImg3d  X by Y by Z samples per volume, any of the eleven types, any number of volumes. A plane is a volume of one
/// slice, which has no corners. Outside a volume the nearest sample is repeated, and so are the products of its gradients.
/// Spacing is not looked at: deviations are in voxels along each axis.
/// @return a new float image of the size of `inImg3d`, in units of the squared sample per squared voxel. The gradient has
/// standard deviation 1 voxel and coverage 4; the measure is that of Harris, with k = 0.005.
/// @throws processor::ORVIKBaseProcessingException  for what is refused before any work: a null image, sizes or types
/// that do not go together, a deviation or coverage that makes no kernel, images that share memory; the text names the
/// attributes and their values.
/// Cost: X * Y * Z * 36 * half-size multiplications, six float images while it runs, half-size as below. Formed in float, with
/// double sums of the gradient; roots and angles within some units in the last place. A squared gradient
/// beyond 10^12 may make the Harris measure, which is cubic, infinite or no number. The same bits for any strips, threads and
/// instruction set but one: AVX2 with fused operations rounds less often, so that the last bits may differ, and more of them
/// where two eigenvalues are about the same; HarrisCorner3dImgLvl3::forceInstructionSets chooses another. What is no number is
/// the NaN 0x7fc00000.
ORVIK_API ImagePtr harrisCorner3dImg(const ConstImagePtr& inImg3d);

/// The same with a standard deviation for gradient and smoothing, in voxels along each axis, finite and above 0.
ORVIK_API ImagePtr harrisCorner3dImg(const ConstImagePtr& inImg3d, float inOptGradStdDev);

/// The same into an image of the caller's.
///
/// @param inOptGradientGaussianCoverage  standard deviations that the kernels cover on each side, finite and above 0:
/// they end at max(1, floor(coverage * deviation + 0.5)) voxels, at most 2^20. Null for the default, 4.
/// @param inOptCornerDetectionParams  which measure: attr::eCRT_Harris with its k, or the smallest eigenvalue by any other
/// value. Null for the default, Harris with k = 0.005. Negative k and such from 1/27 on, where no corner is above 0, are
/// served as they are.
/// @param outImg  of the size of `inImg3d` and of float samples, as the working images are; not null. It may be a float
/// `inImg3d` itself, but share no memory with it otherwise.
ORVIK_API void harrisCorner3dImg(const ConstImagePtr& inImg3d, float inOptGradStdDev,
                                 const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
                                 const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams,
                                 const ImagePtr& outImg);

/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HarrisCorner3dImgLvl1> harrisCorner3dImg_async(const ConstImagePtr& inImg3d);
ORVIK_API Ptr<HarrisCorner3dImgLvl1> harrisCorner3dImg_async(const ConstImagePtr& inImg3d, float inOptGradStdDev);
ORVIK_API Ptr<HarrisCorner3dImgLvl1> harrisCorner3dImg_async(
    const ConstImagePtr& inImg3d, float inOptGradStdDev,
    const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HarrisCorner3dImgLvl1> processor);

/// Level 1: whole images, one child per volume. The seven images are of one type, float unless the caller gives others:
/// gradients and tensor are then rounded to whole numbers and saturated, the response is cut to one and wraps.
/// The result may be one of the working images or the input, and the fourth to sixth working image the input; otherwise images
/// share no memory.
class ORVIK_API HarrisCorner3dImgLvl1
    : public processor::Processor<HarrisCorner3dImgLvl1, processor::BaseAsync1Processor, attr::InImg3d,
                                  attr::InOptGradStdDev, attr::InOptGradientGaussianCoverage,
                                  attr::InOptCornerDetectionParams3d, attr::OutWk1Img, attr::OutWk2Img, attr::OutWk3Img,
                                  attr::OutWk4Img, attr::OutWk5Img, attr::OutWk6Img, attr::OutImg>
{
    ORVIK_PROCESSOR(HarrisCorner3dImgLvl1, 37)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
