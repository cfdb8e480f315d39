#pragma once

// The bodies of ConnectedComponentLvl1 and ConnectedComponentLvl2, included by the units of the classes that derive from them.

#include "siblings/AdvancedMorphology/Processor/ConnectedComponents.h"
#include "siblings/AdvancedMorphology/Processor/PartComponents.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// A plane or a volume per child.
template<class Part, class A>
SubImages<A> eachPart(const typename A::StorageType& image)
{
    if constexpr (Part::s_areVolumes)
        return eachVolume<A>(image);
    else
        return eachPlane<A>(image);
}

template<class D, class Part>
BoolResult ConnectedComponentLvl2<D, Part>::runDerived()
{
    this->template value<OutPartComponents>()->runs.find(
        *this->template value<typename Part::InSubImg>(),
        neighborhoodOf(this->template value<typename Part::InNeighborhood>()));
    return success();
}

template<class D, class Part>
processor::RulePtr ConnectedComponentLvl1<D, Part>::createRule() const
{
    return matchSize(this->template attribute<typename Part::InBinLabImg>(),
                     this->template attribute<typename Part::OutLabelImg>())
           && imagesApart(*this, mayBeSame<typename Part::InBinLabImg, typename Part::OutLabelImg>);
}

template<class D, class Part>
void ConnectedComponentLvl1<D, Part>::initInitializers(processor::InitializerMap& initializers)
{
    this->template addInitializer<typename Part::OutLabelImg>(
        initializers, duplicateInOut(this->template attribute<typename Part::OutLabelImg>(),
                                     this->template attribute<typename Part::InBinLabImg>(), image::eIBT_Label32));
}

template<class D, class Part>
template<class Lvl2>
processor::RetrievalResult ConnectedComponentLvl1<D, Part>::findComponents(const core::BasePriority& priority,
                                                                           processor::ProviderPtr& provider)
{
    return dispatch<Lvl2>(priority, provider,
                          eachPart<Part, typename Part::InSubImg>(this->template value<typename Part::InBinLabImg>()),
                          same<typename Part::InNeighborhood>(this->template value<typename Part::InOptNeighborhood>()),
                          resultOfEach<OutPartComponents>(m_components));
}

template<class D, class Part>
processor::StageResult ConnectedComponentLvl1<D, Part>::postProcess()
{
    const ImagePtr& labels = this->template value<typename Part::OutLabelImg>();
    return writeLabels(*m_components, Part::s_areVolumes ? labels->getSizeZ() : 1, Part::OutLabelImg::s_name, *labels,
                       this->template attribute<attr::OutMaxLabel>()->accessValue());
}

template<class D, class Part>
void ConnectedComponentLvl1<D, Part>::clearIntermediateData() noexcept
{
    m_components->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
