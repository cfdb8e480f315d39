#pragma once

#include "siblings/AdvancedMorphology/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

class ImageComponents;

/// Level 1: labels what hangs together in each plane: from 1 in raster order of the components' first samples, running
/// on over all planes. What is 0 stays 0. More components than the label image can name end the run with a message,
/// before a label is written. A label image that the caller does not give is made with 32 bits.
class ORVIK_API ConnectedComponent2dImgLvl1
    : public processor::Processor<ConnectedComponent2dImgLvl1, processor::BaseAsync1Processor, attr::InBinLabImg,
                                  attr::InOptNeighborhood2d, attr::OutLabelImg, attr::OutMaxLabel>
{
    ORVIK_PROCESSOR(ConnectedComponent2dImgLvl1, 0)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

    processor::ResultsOfPlanes<ImageComponents> m_components;
};

}}}  // namespace orvik::imaproc::advmorpho
