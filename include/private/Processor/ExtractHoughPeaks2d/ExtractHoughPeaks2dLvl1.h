#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ExtractHoughPeaks2dLvl1;

/// Lists the peaks of the modulus of a plane of two components, such as the real and imaginary part of an accumulator.
///
/// A pixel is a peak when its modulus, sqrt(gx^2 + gy^2) in single precision, is above that of its eight neighbours and not
/// below the lowest one that counts. Outside the image both components read 0, so that a pixel on the border may be one.
///
/// @param gx, gy  of equal size and type, any of the eleven types; of several planes the first one is looked at.
/// @param lowestMax  compared as a 32-bit float; a pixel equal to it counts. No number: none does.
/// @return the pixels with column, line and modulus, the highest first. Equal ones stand in no particular order, which is the
/// same in every run; plateaus give none, and a NaN hinders its neighbours.
/// @throws processor::ORVIKBaseProcessingException  for null images; sizes or types that differ end the run in words.
/// Cost: a root per pixel. The same list for any strips, threads and instruction set.
ORVIK_API Ptr<attr::Pixels2d> extractHoughPeaks2d(const ConstImagePtr& gx, const ConstImagePtr& gy, const double& lowestMax);

/// The same in the background; the list is had by getAsyncProcessorOutput.
ORVIK_API Ptr<ExtractHoughPeaks2dLvl1> extractHoughPeaks2d_async(const ConstImagePtr& gx, const ConstImagePtr& gy,
                                                                 const double& lowestMax);

/// The same for images of any number of planes: a list for each (z, c, t).
ORVIK_API Ptr<attr::PlanIndexedPixels2d> multiSlice_extractHoughPeaks2d(const ConstImagePtr& gx, const ConstImagePtr& gy,
                                                                        const double& lowestMax);
ORVIK_API Ptr<ExtractHoughPeaks2dLvl1> multiSlice_extractHoughPeaks2d_async(const ConstImagePtr& gx, const ConstImagePtr& gy,
                                                                            const double& lowestMax);

/// Wait for the end. The first gives the list of plane (0, 0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::Pixels2d> getAsyncProcessorOutput(Ptr<ExtractHoughPeaks2dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(Ptr<ExtractHoughPeaks2dLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API ExtractHoughPeaks2dLvl1
    : public processor::Processor<ExtractHoughPeaks2dLvl1, processor::BaseAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InOptLowestMax, attr::OutPIPixels2d>
{
    ORVIK_PROCESSOR(ExtractHoughPeaks2dLvl1, 13)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
