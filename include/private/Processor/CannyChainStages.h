#pragma once

// The bodies of CannyChainLvl1, included by the main unit of each class that derives from it. Its `Family` has
// - Classes, IterativePropagation, LabelThresholdPass, ConnectedComponents, LabelLutPass, Threshold: processors of stages;
// - Gradients, a GradientList of the attributes of the gradients, gx first, each with that of Classes that takes it;
// - InSubImg, InSubLabelImg, InThresholdImg, InBinLabImg, OutLabelImg, InNeighborhood, InOptNeighborhood: attributes of the
//   other processors, and `s_neighborhood`, all neighbours with diagonals;
// - `matchGradients(a, b)`, the rule on two gradients, and `each<A>(image)`, a plane or a volume per child.

#include "Processor/CannyChain.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"

namespace orvik { namespace imaproc { namespace fd {

template<class InImg, class InSubImg>
struct Gradient
{
    typedef InImg Whole;
    typedef InSubImg Part;
};

template<class First, class... Others>
struct GradientList
{
    typedef typename First::Whole Gx;

    template<class Rule, class AttributeOf>
    static processor::RulePtr match(const Rule& rule, const AttributeOf& attributeOf)
    {
        const auto gx = attributeOf(First());
        return (rule(gx, attributeOf(Others())) && ...);
    }
    /// Calls f with the parts of a stage that hand each gradient on, the last one first; then come those of `earlier` ones.
    template<class F, class PartOf, class... Earlier>
    static auto withParts(const F& f, const PartOf& partOf, const Earlier&... earlier)
    {
        if constexpr (sizeof...(Others) == 0)
            return f(partOf(First()), earlier...);
        else
            return GradientList<Others...>::withParts(f, partOf, partOf(First()), earlier...);
    }
};

template<class D, class Family, class... A>
processor::RulePtr CannyChainLvl1<D, Family, A...>::createRule() const
{
    typedef typename Family::Gradients Gradients;
    const auto attributeOf = [this](auto gradient) {
        return this->template attribute<typename decltype(gradient)::Whole>();
    };
    const auto& gx = this->template attribute<typename Gradients::Gx>();
    const auto& out = this->template attribute<attr::OutBinImg>();
    const auto sizeWhenSet = [&](const auto& working) {
        return If(processor::isSet(working), matchSize(gx, working), processor::none());
    };
    return Gradients::match([](const auto& a, const auto& b) { return Family::matchGradients(a, b); }, attributeOf)
           && matchSize(gx, out) && sizeWhenSet(this->template attribute<attr::OutOptWk1BinImg>())
           && sizeWhenSet(this->template attribute<attr::OutOptWk2BinImg>())
           && sizeWhenSet(this->template attribute<attr::OutOptWk1LabelImg>()) && imagesApart(*this);
}

template<class D, class Family, class... A>
void CannyChainLvl1<D, Family, A...>::initInitializers(processor::InitializerMap& initializers)
{
    this->template addInitializer<attr::OutBinImg>(
        initializers, duplicateInOut(this->template attribute<attr::OutBinImg>(),
                                     this->template attribute<typename Family::Gradients::Gx>(), image::eIBT_Binary));
}

template<class D, class Family, class... A>
bool CannyChainLvl1<D, Family, A...>::usesLabels() const
{
    return this->template value<attr::InOptOptimizationPolicy>() == attr::ePOP_Labels;
}

template<class D, class Family, class... A>
ImagePtr CannyChainLvl1<D, Family, A...>::workingImage() const
{
    const ImagePtr& out = this->template value<attr::OutBinImg>();
    return out->hasBinary8BitsStorage() ? out : this->template value<attr::OutOptWk1BinImg>();
}

template<class D, class Family, class... A>
template<class W>
BoolResult CannyChainLvl1<D, Family, A...>::makeWorkingImage(unsigned int bufferType)
{
    return duplicateInOut(this->template attribute<W>(), this->template attribute<attr::OutBinImg>(),
                          static_cast<image::eImageBufferType>(bufferType))
        ->initOutputAttribute();
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveProvider(
    const core::BasePriority& priority, unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    switch (iterationNumber) {
    case 0: return retrieveFirstProvider(priority, provider);
    case 1: return retrieveSecondProvider(priority, provider);
    case 2: return retrieveThirdProvider(priority, provider);
    case 3: return retrieveFourthProvider(priority, provider);
    case 4: return retrieveFifthProvider(priority, provider);
    case 5: return retrieveSixthProvider(priority, provider);
    default: return this->invalidIteration(5);
    }
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveFirstProvider(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    if (!this->template value<attr::OutBinImg>()->hasBinary8BitsStorage()) {
        attr::OutOptWk1BinImg& working = *this->template attribute<attr::OutOptWk1BinImg>();
        if (!working.hasValue() || !working.getStorage()->hasBinary8BitsStorage()) {
            working.clear();
            if (const BoolResult made = makeWorkingImage<attr::OutOptWk1BinImg>(image::eIBT_UInt8); !made)
                return made;
        }
    }
    return Family::Gradients::withParts(
        [&](const auto&... gradients) {
            return dispatch<typename Family::Classes>(priority, provider,
                                                      Family::template each<attr::OutBinImg>(workingImage()),
                                                      same(this->template attribute<attr::InCannyThresholds>()),
                                                      gradients...);
        },
        [this](auto gradient) {
            typedef decltype(gradient) G;
            return Family::template each<typename G::Part>(this->template value<typename G::Whole>());
        });
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveSecondProvider(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return dispatch<typename Family::IterativePropagation>(
            priority, provider, Family::template each<attr::OutImg>(workingImage()),
            same<typename Family::InNeighborhood>(Family::s_neighborhood),
            same<attr::InLocalExtremumType>(attr::eLET_Maxima),
            Family::template each<typename Family::InSubImg>(workingImage()));
    if (const BoolResult made = makeWorkingImage<attr::OutOptWk2BinImg>(image::eIBT_Binary); !made)
        return made;
    return dispatch<typename Family::LabelThresholdPass>(
        priority, provider, Family::template each<attr::OutBinImg>(this->template value<attr::OutOptWk2BinImg>()),
        Family::template each<typename Family::InSubImg>(workingImage()));
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveThirdProvider(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return retrieveThresholdImgProvider(priority, provider);
    if (const BoolResult made = makeWorkingImage<attr::OutOptWk1LabelImg>(image::eIBT_Label16); !made)
        return made;
    Ptr<typename Family::ConnectedComponents> components;
    const processor::RetrievalResult retrieved = delegate<typename Family::ConnectedComponents>(
        priority, provider, keptIn(components),
        same<typename Family::InBinLabImg>(this->template value<attr::OutOptWk2BinImg>()),
        same<typename Family::InOptNeighborhood>(Family::s_neighborhood),
        same<typename Family::OutLabelImg>(this->template value<attr::OutOptWk1LabelImg>()));
    m_connectedComponents = components;
    return retrieved;
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveFourthProvider(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    if (!usesLabels())
        return processor::eRRT_NoMoreProvider;
    const auto& components = static_cast<const typename Family::ConnectedComponents&>(*m_connectedComponents);
    // Into the result even when the classes lie in a working image, which the next stage reads: deliberate.
    return dispatch<typename Family::LabelLutPass>(
        priority, provider, Family::template each<attr::OutImg>(this->template value<attr::OutBinImg>()),
        same<attr::InLocalExtremumType>(attr::eLET_Maxima),
        same<attr::InNbLabels>(components.template getStorage<attr::OutMaxLabel>()),
        Family::template each<typename Family::InSubLabelImg>(this->template value<attr::OutOptWk1LabelImg>()),
        Family::template each<typename Family::InSubImg>(workingImage()));
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveFifthProvider(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    return retrieveThresholdImgProvider(priority, provider);
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveSixthProvider(const core::BasePriority&,
                                                                                  processor::ProviderPtr&)
{
    return processor::eRRT_NoMoreProvider;
}

template<class D, class Family, class... A>
processor::RetrievalResult CannyChainLvl1<D, Family, A...>::retrieveThresholdImgProvider(const core::BasePriority& priority,
                                                                                         processor::ProviderPtr& provider)
{
    return dispatch<typename Family::Threshold>(
        priority, provider, Family::template each<attr::OutBinImg>(this->template value<attr::OutBinImg>()),
        same<attr::InThresholdMax>(255.0), same<attr::InThresholdMin>(2.0),
        Family::template each<typename Family::InThresholdImg>(workingImage()));
}

}}}  // namespace orvik::imaproc::fd
