#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HarrisCorner2dImgLvl1;

/// Measures at each pixel of each plane how much the image changes in every direction, as it does at corners.
///
/// With the structure tensor (xx, xy; xy, yy), the products of the Gaussian gradient smoothed by the same Gaussian:
/// - the Harris measure r = xx * yy - xy^2 - k * (xx + yy)^2, of which the result is sqrt(r), or -sqrt(-r) where r is
///   below 0: a root, so that the response has the unit of the squared gradient. Corners are above 0, edges below.
///   After C. Harris, M. Stephens, "A combined corner and edge detector", Alvey Vision Conference, 1988.
/// - the smaller eigenvalue, (xx + yy - sqrt((xx - yy)^2 + 4 * xy^2)) / 2, as it is.
///   After J. Shi, C. Tomasi, "Good features to track", IEEE CVPR, 1994.
///
/// @param inImg  X by Y samples per plane, any of the eleven types, any number of planes. Outside a plane its edge sample
/// is repeated, and so are the products of its gradients.
/// @return a new float image of the size of `inImg`, in units of the squared sample per squared pixel. The gradient has
/// standard deviation 1 pixel and coverage 4; the measure is that of Harris, with k = 0.04.
/// @throws processor::ORVIKBaseProcessingException  for what is refused before any work: a null image, sizes or types
/// that do not go together, a deviation or coverage that makes no kernel, images that share memory; the text names the
/// attributes and their values.
/// Cost: X * Y * 10 * half-size multiplications, three float images while it runs, half-size as below. Formed in float,
/// with double sums of the gradient. The same bits for any strips, threads and instruction set; what is no number is the
/// NaN 0x7fc00000.
ORVIK_API ImagePtr harrisCorner2dImg(const ConstImagePtr& inImg);

/// The same with a standard deviation for gradient and smoothing, in pixels, finite and above 0.
ORVIK_API ImagePtr harrisCorner2dImg(const ConstImagePtr& inImg, float inOptGradStdDev);

/// The same into an image of the caller's.
///
/// @param inOptGradientGaussianCoverage  standard deviations that the kernels cover on each side, finite and above 0:
/// they end at max(1, floor(coverage * deviation + 0.5)) pixels, at most 2^20. Null for the default, 4.
/// @param inOptCornerDetectionParams  which measure: attr::eCRT_Harris with its k, or the smaller eigenvalue by any other
/// value. Null for the default, Harris with k = 0.04. Negative k and such beyond 0.25, where no corner is above 0, are
/// served as they are.
/// @param outImg  of the size of `inImg` and of float samples, as the working images are; not null. It may be a float
/// `inImg` itself, but share no memory with it otherwise.
ORVIK_API void harrisCorner2dImg(const ConstImagePtr& inImg, float inOptGradStdDev,
                                 const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
                                 const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams,
                                 const ImagePtr& outImg);

/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HarrisCorner2dImgLvl1> harrisCorner2dImg_async(const ConstImagePtr& inImg);
ORVIK_API Ptr<HarrisCorner2dImgLvl1> harrisCorner2dImg_async(const ConstImagePtr& inImg, float inOptGradStdDev);
ORVIK_API Ptr<HarrisCorner2dImgLvl1> harrisCorner2dImg_async(
    const ConstImagePtr& inImg, float inOptGradStdDev, const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HarrisCorner2dImgLvl1> processor);

/// Level 1: whole images, one child per plane. The four images are of one type, float unless the caller gives others:
/// gradients and tensor are then rounded to whole numbers and saturated, the response is cut to one and wraps.
/// The result may be one of the working images or the input, and the third working image the input; otherwise images share
/// no memory.
class ORVIK_API HarrisCorner2dImgLvl1
    : public processor::Processor<HarrisCorner2dImgLvl1, processor::BaseAsync1Processor, attr::InImg, attr::InOptGradStdDev,
                                  attr::InOptGradientGaussianCoverage, attr::InOptCornerDetectionParams2d, attr::OutWk1Img,
                                  attr::OutWk2Img, attr::OutWk3Img, attr::OutImg>
{
    ORVIK_PROCESSOR(HarrisCorner2dImgLvl1, 31)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
