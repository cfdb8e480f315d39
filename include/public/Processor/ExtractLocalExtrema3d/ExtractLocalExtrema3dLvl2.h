#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one volume. Joins the lists of its strips, and keeps the most extreme voxels in their order.
class ORVIK_API ExtractLocalExtrema3dLvl2
    : public processor::Processor<ExtractLocalExtrema3dLvl2, processor::BaseAsync1Processor, attr::InSubImg3d,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::InFeaturesDistZ,
                                  attr::InLocalExtremaConfig, attr::OutVoxels3d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema3dLvl2, 26)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::ResultsOfStrips<attr::Voxels3d> m_results;
};

}}}  // namespace orvik::imaproc::fd
