#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/PartsOfImages.h"

#include "frame/processor/ElementsRange.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

class ImageComponents;

/// Level 1 of planes and of volumes. Derived classes give their stage by `findComponents`.
template<class D, class Part>
class ConnectedComponentLvl1
    : public processor::Processor<D, processor::BaseAsync1Processor, typename Part::InBinLabImg,
                                  typename Part::InOptNeighborhood, typename Part::OutLabelImg, attr::OutMaxLabel>
{
public:
    processor::StageResult postProcess() override;
    void clearIntermediateData() noexcept override;

protected:
    template<class Lvl2>
    processor::RetrievalResult findComponents(const core::BasePriority& priority, processor::ProviderPtr& provider);

    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

private:
    processor::ResultsOfPlanes<ImageComponents> m_components;
};

}}}  // namespace orvik::imaproc::advmorpho
