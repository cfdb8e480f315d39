#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. Joins the lists of its strips, and keeps the most extreme pixels in their order.
class ORVIK_API ExtractLocalExtrema2dLvl2
    : public processor::Processor<ExtractLocalExtrema2dLvl2, processor::BaseAsync1Processor, attr::InSubImg2d,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::InLocalExtremaConfig,
                                  attr::OutPixels2d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema2dLvl2, 23)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::ResultsOfStrips<attr::Pixels2d> m_results;
};

}}}  // namespace orvik::imaproc::fd
