#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class MaxL2Norm2MsrLvl1;

/// The largest Euclidean norm of two images, sample by sample: max over all samples p of all planes of
/// sqrt(a(p)^2 + b(p)^2).
///
/// Squares and their sum are formed and compared in float, whatever the sample type, so 32-bit integers above 2^24 lose
/// low bits before they are squared; the root is taken in double. A NaN takes with it the maximum of its run of samples
/// so far; a strip whose last sample is one counts as none, and when nothing else is left the lowest double is returned.
///
/// @param in1, in2  images of equal sizes and buffer type, any of the eleven types.
/// @return the measure in units of the samples; 0 for images that are 0 everywhere.
/// @throws processor::ORVIKBaseProcessingException  when sizes or types differ or an image is null; the text names the
/// attributes and both values.
/// Cost: one pass over both images. Every instruction set gives the same result, but AVX-512, which rounds
/// a^2 + b^2 once instead of twice.
ORVIK_API double maxL2Norm2Msr(const ConstImagePtr& in1, const ConstImagePtr& in2);
/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API Ptr<MaxL2Norm2MsrLvl1> maxL2Norm2Msr_async(const ConstImagePtr& in1, const ConstImagePtr& in2);
/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API double getAsyncProcessorOutput(Ptr<MaxL2Norm2MsrLvl1> processor);

/// Level 1: whole images, one child per plane; keeps the largest of the planes.
class ORVIK_API MaxL2Norm2MsrLvl1 : public processor::Processor<MaxL2Norm2MsrLvl1, processor::BaseAsync1Processor,
                                                                attr::InImg1, attr::InImg2, attr::OutMax>
{
    ORVIK_PROCESSOR(MaxL2Norm2MsrLvl1, 75)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;

    processor::ResultsOfPlanes<attr::StatsResult> m_results;
};

}}}  // namespace orvik::imaproc::fd
