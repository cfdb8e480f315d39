#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ExtractLocalExtrema2dLvl1;

/// Lists the local extrema of a plane.
///
/// A pixel is listed when no pixel of the rectangle of 2 * inFeaturesDistX + 1 columns and 2 * inFeaturesDistY + 1 lines
/// about it is more extreme, and when its value passes the threshold of the configuration. What becomes of equal values
/// the type tells: with attr::eLET_Maxima and eLET_Minima a pixel must beat those before it in scan order and may tie
/// with those after it, so that a plateau that fits into one rectangle gives its first pixel; with the strict types it
/// must beat all, so that a plateau gives none. Pixels outside the image hinder nothing.
///
/// @param inImg  one plane, any of the eleven types.
/// @param inFeaturesDistX, inFeaturesDistY  half-sizes of the rectangle in pixels; 0 looks at no neighbours on that axis.
/// What exceeds the image, however far, means all of it.
/// @param inOptLocalExtremaConfig  type, threshold and largest number; null or not given: all maxima. Values are compared
/// with the threshold as 32-bit floats, `>=` for maxima and `<=` for minima, so whole numbers beyond 2^24 are seen
/// rounded. Any type but the four reads as attr::eLET_Maxima.
/// @return the pixels with column, line and value, the most extreme ones first, at most as many as the configuration
/// says. Equal values stand in no particular order, which is the same in every run. A pixel whose value is the lowest
/// finite one of its type (the highest for minima), beyond it, or NaN is never listed; a NaN in its line within reach
/// keeps a pixel from being listed, one in another line does not.
/// @throws processor::ORVIKBaseProcessingException  for a null image or an image of several planes (use the multiSlice_
/// form); the text names the attribute and both values.
/// Cost: a few passes over the image, and some more with the logarithm of inFeaturesDistX; memory for
/// 3 * inFeaturesDistY lines per thread, no more than 3 times those of the image, and for the list. The same list for any
/// strips, threads and instruction set.
ORVIK_API Ptr<attr::Pixels2d> extractLocalExtrema2d(const ConstImagePtr& inImg, unsigned int inFeaturesDistX,
                                                    unsigned int inFeaturesDistY,
                                                    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);
ORVIK_API Ptr<attr::Pixels2d> extractLocalExtrema2d(const ConstImagePtr& inImg, unsigned int inFeaturesDistX,
                                                    unsigned int inFeaturesDistY);

/// The same in the background; the list is had by getAsyncProcessorOutput.
ORVIK_API Ptr<ExtractLocalExtrema2dLvl1> extractLocalExtrema2d_async(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY);
ORVIK_API Ptr<ExtractLocalExtrema2dLvl1> extractLocalExtrema2d_async(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// The same for an image of any number of planes: a list for each (z, c, t), planes are no neighbours of each other.
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_extractLocalExtrema2d(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_extractLocalExtrema2d(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<ExtractLocalExtrema2dLvl1> multiSlice_extractLocalExtrema2d_async(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY);
ORVIK_API Ptr<ExtractLocalExtrema2dLvl1> multiSlice_extractLocalExtrema2d_async(
    const ConstImagePtr& inImg, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// Wait for the end. The first gives the list of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::Pixels2d> getAsyncProcessorOutput(Ptr<ExtractLocalExtrema2dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(Ptr<ExtractLocalExtrema2dLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API ExtractLocalExtrema2dLvl1
    : public processor::Processor<ExtractLocalExtrema2dLvl1, processor::BaseAsync1Processor, attr::InImg,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::InOptLocalExtremaConfig,
                                  attr::OutPIPixels2d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema2dLvl1, 22)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
