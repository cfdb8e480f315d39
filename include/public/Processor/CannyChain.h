#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// What Level 1 of Canny's detector is in planes and in volumes: the classes of Level 2 with the hysteresis behind them.
/// First 0 (no candidate), 1 (weak) and 2 (strong) in a working image, then 2 spreads over what hangs together with it, then
/// what is 2 becomes 1. `Family` tells the classes and attributes; `D` and `A` are as for Processor.
template<class D, class Family, class... A>
class CannyChainLvl1 : public processor::Processor<D, processor::BaseRepeatedAsync1Processor, A...>
{
public:
    using processor::BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;

protected:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

private:
    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveThirdProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveFourthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveFifthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveSixthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveThresholdImgProvider(const core::BasePriority&, processor::ProviderPtr&);

    bool usesLabels() const;
    /// The image of classes: the result itself where it can hold them.
    ImagePtr workingImage() const;
    /// Makes working image `W` of the size of the result unless there is one.
    template<class W>
    BoolResult makeWorkingImage(unsigned int bufferType);

    Ptr<processor::BaseProcessor> m_connectedComponents;  // tells the number of labels
};

}}}  // namespace orvik::imaproc::fd
