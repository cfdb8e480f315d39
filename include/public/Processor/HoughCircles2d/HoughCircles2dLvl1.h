#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughCircles2dLvl1;

/// Lists the circles of a plane.
///
/// Pixels are scored as centres by houghCircles2dImg, from gradients that are given or made of a grey image. A centre is a
/// pixel whose score is above that of its eight neighbours and not below max(AbsoluteThreshold, RatioOfMax * greatest score of
/// the plane). Its radius is the whole one whose ring carries most gradient along the radius; true radii are about half a
/// pixel larger, since whole ones are cut off. Then each circle that is too close to an earlier, stronger one goes, see
/// attr::RemoveTooCloseCirclesParams.
/// The phase-coded method scores by houghCirclesPhaseCoded2dImg instead, takes the peaks of the modulus, and reads the radius
/// from the angle there: radii are real numbers, found without trying, but circles that touch or lie in one another spoil
/// each other's.
/// After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975; Atherton, Kerbyson, "Size
/// invariant circle detection", Image and Vision Computing 17(11), 1999.
///
/// @param inGx, inGy  gradient, of equal size and type, any of the eleven; of several planes the first one is looked at.
/// @param radiusRange  whole pixels, from 1 on; narrowed silently to half of the smaller side. Null: from 1 to that half. A
/// range of a single radius gives no circles by the phase-coded method, which divides by its width.
/// @param algoMethod  default: attr::eHCAM_Standard.
/// @param circleIntensityType  outward: dark circles, inward: bright ones, both. Default: both.
/// @param maxAngleWithGradDir  radians between gradient and radius; see houghCircles2dImg. Default: 0.1.
/// @param nbMaxPtsPerCircle  places that rings are thinned to; 0 gives no circles. Default: all.
/// @param accumIntensityThreshold  null or not given: from half of the greatest score on. NaN as the absolute threshold gives
/// no circles, NaN as the ratio counts as none.
/// @param removeTooCloseCirclesParams  null or not given: circles whose centre lies in a stronger one are removed.
/// @param outImg1, outImg2  are given the scores, or their real and imaginary part: as large as the image, float. May be null.
/// @return the circles, the strongest first, in pixels from the centre of the first pixel of the plane; their value is the
/// score of their centre.
/// @throws processor::ORVIKBaseProcessingException  for a null image, only one part of a gradient, or gradients beside an
/// image, sizes or types that differ, results that are not of floats or share memory, a greatest radius below 0, rings that
/// take more memory than there is; the text names the attribute and both values.
/// Cost: that of the scores, a pass or two over them, and that of computeBestCirclesRadiiFromGradMagImg2d; removing grows
/// with the square of the number of circles. The same circles for any strips, threads and instruction set.
ORVIK_API Ptr<attr::HoughCircles2dPpties> houghCircles2d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eHoughCircles2dAlgoMethod& algoMethod, const attr::eCircleIntensityType& circleIntensityType,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg1,
    const ImagePtr& outImg2);
ORVIK_API Ptr<attr::HoughCircles2dPpties> houghCircles2d(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same, from the gradients of a grey image by Gaussian derivatives of standard deviation 1.
///
/// @param inImg  any of the eleven types; of several planes the first one is looked at.
/// Other parameters as above.
ORVIK_API Ptr<attr::HoughCircles2dPpties> houghCircles2d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::HoughCircles2dPpties> houghCircles2d(const ConstImagePtr& inImg,
                                                         const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);

/// The same in the background; the circles are had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughCircles2dLvl1> houghCircles2d_async(const ConstImagePtr& inImg,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCircles2dLvl1> houghCircles2d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughCircles2dLvl1> houghCircles2d_async(const ConstImagePtr& inGx, const ConstImagePtr& inGy,
                                                       const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCircles2dLvl1> houghCircles2d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eHoughCircles2dAlgoMethod& algoMethod, const attr::eCircleIntensityType& circleIntensityType,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg1,
    const ImagePtr& outImg2);

/// The same for images of any number of planes: a list for each (z, c, t), each with its own greatest score.
ORVIK_API Ptr<attr::PlanIndexedHoughCircles2dPpties> multiSlice_houghCircles2d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<attr::PlanIndexedHoughCircles2dPpties> multiSlice_houghCircles2d(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<attr::PlanIndexedHoughCircles2dPpties> multiSlice_houghCircles2d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<attr::PlanIndexedHoughCircles2dPpties> multiSlice_houghCircles2d(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eHoughCircles2dAlgoMethod& algoMethod, const attr::eCircleIntensityType& circleIntensityType,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg1,
    const ImagePtr& outImg2);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<HoughCircles2dLvl1> multiSlice_houghCircles2d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCircles2dLvl1> multiSlice_houghCircles2d_async(
    const ConstImagePtr& inImg, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eCircleIntensityType& circleIntensityType, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams);
ORVIK_API Ptr<HoughCircles2dLvl1> multiSlice_houghCircles2d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange);
ORVIK_API Ptr<HoughCircles2dLvl1> multiSlice_houghCircles2d_async(
    const ConstImagePtr& inGx, const ConstImagePtr& inGy, const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
    const attr::eHoughCircles2dAlgoMethod& algoMethod, const attr::eCircleIntensityType& circleIntensityType,
    double maxAngleWithGradDir, unsigned int nbMaxPtsPerCircle,
    const ConstPtr<attr::AccumIntensityThreshold>& accumIntensityThreshold,
    const ConstPtr<attr::RemoveTooCloseCirclesParams>& removeTooCloseCirclesParams, const ImagePtr& outImg1,
    const ImagePtr& outImg2);

/// Wait for the end. The first gives the circles of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::HoughCircles2dPpties> getAsyncProcessorOutput(Ptr<HoughCircles2dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedHoughCircles2dPpties> getAsyncProcessorMultiSliceOutput(Ptr<HoughCircles2dLvl1> processor);

/// Level 1: whole images. Makes gradients where they are not given, then one child per plane.
class ORVIK_API HoughCircles2dLvl1
    : public processor::Processor<
          HoughCircles2dLvl1, processor::BaseAsync2Processor, attr::InOptGreyImg2d, attr::InOptGxGreyImg2d,
          attr::InOptGyGreyImg2d, attr::InOptHoughCircles2dAlgoMethod, attr::InOptCircleIntensityType,
          attr::InOptMaxAngleWithGradDir, attr::InOptNbMaxPtsPerCircle, attr::InOptHoughCirclesRadiusRange,
          attr::InOptAccumIntensityThreshold, attr::InOptRemoveTooCloseCirclesParams, attr::OutOptRealImg1,
          attr::OutOptRealImg2, attr::OutOptGxGreyImg2d, attr::OutOptGyGreyImg2d, attr::OutPIHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(HoughCircles2dLvl1, 46)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
    bool isPhaseCoded() const;
    template<class In>
    BoolResult makeScores() const;

    ConstImagePtr m_gx, m_gy;  // in force
};

}}}  // namespace orvik::imaproc::fd
