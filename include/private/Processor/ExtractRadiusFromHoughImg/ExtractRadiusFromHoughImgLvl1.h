#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ExtractRadiusFromHoughImgLvl1;

/// Reads the radii of circles from the angles of a complex accumulator, see houghCirclesPhaseCoded2dImg, at their centres.
///
/// Radius = m + (R - m) * a / (2 pi), with the angle a of the pixel from 0 to below 2 pi, for radii m to R.
///
/// @param inRealImg, inImImg  one plane each, of equal size and type, any of the eleven types. Sizes or types that differ end
/// the run in words.
/// @param centers  whose columns and lines are rounded to the nearest pixel, halves up. Centres may repeat.
/// @param radiusRange  the one that the accumulator was made with, as it was narrowed to the image.
/// @param outPpties  is given a circle for each centre, in their order, with its place and value; the places of centres that
/// lie outside the image, or are no numbers, stay empty pointers.
/// @throws processor::ORVIKBaseProcessingException  for null arguments; the text names the attribute.
/// Cost: one pixel per centre, and a look at every line.
ORVIK_API void extractRadiusFromHoughImg2d(const ConstImagePtr& inRealImg, const ConstImagePtr& inImImg,
                                           const ConstPtr<attr::Pixels2d>& centers,
                                           const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange,
                                           const Ptr<attr::HoughCircles2dPpties>& outPpties);
/// The same in the background.
ORVIK_API Ptr<ExtractRadiusFromHoughImgLvl1> extractRadiusFromHoughImg2d_async(
    const ConstImagePtr& inRealImg, const ConstImagePtr& inImImg, const ConstPtr<attr::Pixels2d>& centers,
    const ConstPtr<attr::HoughCirclesRadiusRange>& radiusRange, const Ptr<attr::HoughCircles2dPpties>& outPpties);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::HoughCircles2dPpties> getAsyncProcessorOutput(Ptr<ExtractRadiusFromHoughImgLvl1> processor);

/// Level 1: a single plane, cut into strips that own the centres on their lines.
class ORVIK_API ExtractRadiusFromHoughImgLvl1
    : public processor::Processor<ExtractRadiusFromHoughImgLvl1, processor::BaseAsync1Processor,
                                  attr::InSingleGreyComplexRealImg2d, attr::InSingleGreyComplexImImg2d,
                                  attr::InHoughCircles2dCenters, attr::InHoughCirclesRadiusRange,
                                  attr::OutHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(ExtractRadiusFromHoughImgLvl1, 28)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

    processor::ResultsOfStrips<attr::HoughCircles2dPpties> m_results;
    processor::RecordsOfStrips<attr::Pixels2d> m_centers;
};

}}}  // namespace orvik::imaproc::fd
