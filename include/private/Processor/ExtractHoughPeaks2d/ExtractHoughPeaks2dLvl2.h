#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. Joins the lists of its strips and sorts them, the highest peak first.
class ORVIK_API ExtractHoughPeaks2dLvl2
    : public processor::Processor<ExtractHoughPeaks2dLvl2, processor::BaseAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InOptLowestMax, attr::OutPixels2d>
{
    ORVIK_PROCESSOR(ExtractHoughPeaks2dLvl2, 14)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::ResultsOfStrips<attr::Pixels2d> m_results;
};

}}}  // namespace orvik::imaproc::fd
