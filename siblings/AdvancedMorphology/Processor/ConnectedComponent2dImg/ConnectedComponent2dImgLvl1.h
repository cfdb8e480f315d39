#pragma once

#include "siblings/AdvancedMorphology/Library.h"

#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc {

namespace attr {
struct InBinLabImg;
struct InOptNeighborhood2d;
struct OutLabelImg;
struct OutMaxLabel;
}  // namespace attr

namespace advmorpho {

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

    boost::shared_ptr<std::map<unsigned int, boost::shared_ptr<ImageComponents> > > m_components;
};

}  // namespace advmorpho
}}  // namespace orvik::imaproc
