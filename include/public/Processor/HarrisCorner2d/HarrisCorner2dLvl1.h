#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HarrisCorner2dLvl1;

/// Lists the corners of a plane: the local maxima of its corner response (see harrisCorner2dImg), the strongest first.
///
/// A pixel is a corner when no response in the rectangle of 2 * distance + 1 columns and lines about it is larger; of
/// equal ones the first in scan order stays. After C. Harris, M. Stephens, "A combined corner and edge detector", Alvey
/// Vision Conference, 1988, and, for the smaller eigenvalue, J. Shi, C. Tomasi, "Good features to track", IEEE CVPR, 1994.
///
/// @param inImg  one plane of X by Y samples, any of the eleven types.
/// @param maxNbCorners  most corners that are listed; 0 lists none.
/// @param featuresDist  half-size of the rectangle along both axes in pixels; 0 looks at no neighbours: every
/// pixel is listed. What exceeds the image, however far, means all of it.
/// @return column and line of the centres of the pixels, whole numbers, and as value the response, in units of the
/// squared sample per squared pixel. The gradient has standard deviation 1 pixel and coverage 4, the measure is that of
/// Harris with k = 0.04, and there is no threshold: on an image with few corners, faint ones and such below 0 are listed.
/// @throws processor::ORVIKBaseProcessingException  before any work: for a null image, an image of several planes (use
/// the multiSlice_ form), a deviation or coverage that makes no kernel; the text names the attributes and their values.
/// Cost: that of harrisCorner2dImg and of extractLocalExtrema2d; three float images while it runs. The same list for any
/// strips, threads and instruction set.
ORVIK_API Ptr<attr::Pixels2d> harrisCorner2d(const ConstImagePtr& inImg, unsigned long maxNbCorners,
                                             unsigned int featuresDist);

/// The same with a standard deviation for gradient and smoothing, in pixels, finite and above 0.
ORVIK_API Ptr<attr::Pixels2d> harrisCorner2d(const ConstImagePtr& inImg, float inOptGradStdDev, unsigned long maxNbCorners,
                                             unsigned int featuresDist);

/// The same with all that can be chosen.
///
/// @param inOptGradientGaussianCoverage, inOptCornerDetectionParams  as for harrisCorner2dImg; null for the defaults.
/// @param threshold  least response that is listed: of the smaller eigenvalue itself, of the square root of the Harris
/// measure, in units of the squared sample per squared pixel. Compared as a 32-bit float.
/// @param featuresDistX, featuresDistY  half-size of the rectangle along each axis.
ORVIK_API Ptr<attr::Pixels2d> harrisCorner2d(const ConstImagePtr& inImg, float inOptGradStdDev,
                                             const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
                                             const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams,
                                             unsigned long maxNbCorners, double threshold, unsigned int featuresDistX,
                                             unsigned int featuresDistY);

/// The same in the background; the list is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HarrisCorner2dLvl1> harrisCorner2d_async(const ConstImagePtr& inImg, unsigned long maxNbCorners,
                                                       unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner2dLvl1> harrisCorner2d_async(const ConstImagePtr& inImg, float inOptGradStdDev,
                                                       unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner2dLvl1> harrisCorner2d_async(
    const ConstImagePtr& inImg, float inOptGradStdDev, const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY);

/// The same for an image of any number of planes: a list for each (z, c, t), each with at most `maxNbCorners`.
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_harrisCorner2d(const ConstImagePtr& inImg, unsigned long maxNbCorners,
                                                                   unsigned int featuresDist);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_harrisCorner2d(const ConstImagePtr& inImg, float inOptGradStdDev,
                                                                   unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_harrisCorner2d(
    const ConstImagePtr& inImg, float inOptGradStdDev, const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HarrisCorner2dLvl1> multiSlice_harrisCorner2d_async(const ConstImagePtr& inImg, unsigned long maxNbCorners,
                                                                  unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner2dLvl1> multiSlice_harrisCorner2d_async(const ConstImagePtr& inImg, float inOptGradStdDev,
                                                                  unsigned long maxNbCorners, unsigned int featuresDist);
ORVIK_API Ptr<HarrisCorner2dLvl1> multiSlice_harrisCorner2d_async(
    const ConstImagePtr& inImg, float inOptGradStdDev, const ConstPtr<attr::GaussianCoverage>& inOptGradientGaussianCoverage,
    const ConstPtr<attr::CornerDetectionParams>& inOptCornerDetectionParams, unsigned long maxNbCorners, double threshold,
    unsigned int featuresDistX, unsigned int featuresDistY);

/// Wait for the end. The first gives the list of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::Pixels2d> getAsyncProcessorOutput(Ptr<HarrisCorner2dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(Ptr<HarrisCorner2dLvl1> processor);

/// Level 1: whole images, one child per plane. The first working image holds the response at the end. The third one may be
/// the input; otherwise images share no memory.
class ORVIK_API HarrisCorner2dLvl1
    : public processor::Processor<HarrisCorner2dLvl1, processor::BaseAsync1Processor, attr::InImg, attr::InOptGradStdDev,
                                  attr::InOptGradientGaussianCoverage, attr::InOptCornerDetectionParams2d,
                                  attr::InLocalExtremaConfig, attr::InFeaturesDistX, attr::InFeaturesDistY, attr::OutWk1Img,
                                  attr::OutWk2Img, attr::OutWk3Img, attr::OutPIPixels2d>
{
    ORVIK_PROCESSOR(HarrisCorner2dLvl1, 34)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
