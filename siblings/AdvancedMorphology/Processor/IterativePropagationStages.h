#pragma once

// The bodies of IterativePropagationLvl2, included by the units of the classes that derive from it.

#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"
#include "siblings/AdvancedMorphology/Processor/IterativePropagation.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/image/ImageLines.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

template<class D, class Part>
processor::RulePtr IterativePropagationLvl2<D, Part>::createRule() const
{
    return matchSizeAndType(this->template attribute<typename Part::InSubImg>(), this->template attribute<attr::OutImg>())
           && imagesApart(*this, mayBeSame<typename Part::InSubImg, attr::OutImg>);
}

template<class D, class Part>
bool IterativePropagationLvl2<D, Part>::spreadsByStrips() const
{
    return this->template value<attr::OutImg>()->hasBinary8BitsStorage()
           && !isMinima(this->template value<attr::InLocalExtremumType>())
           && this->template value<typename Part::InNeighborhood>() == Part::s_allNeighbors;
}

template<class D, class Part>
processor::StageResult IterativePropagationLvl2<D, Part>::preProcess()
{
    const image::BaseImage& in = *this->template value<typename Part::InSubImg>();
    image::BaseImage& out = *this->template value<attr::OutImg>();
    if (in.getLine(0) != out.getLine(0))
        image::copySamples(in, out);
    return processor::eSRT_Done;
}

template<class D, class Part>
template<class Lvl3>
processor::RetrievalResult IterativePropagationLvl2<D, Part>::spreadWithinStrips(const core::BasePriority& priority,
                                                                                 processor::ProviderPtr& provider)
{
    if (!spreadsByStrips())
        return processor::eRRT_ProviderRetrieved;
    return dispatch<Lvl3>(priority, provider, strips<typename Part::OutStrip>(this->template value<attr::OutImg>()),
                          resultOfEach<attr::OutStatsResult>(m_strips));
}

template<class D, class Part>
processor::StageResult IterativePropagationLvl2<D, Part>::postProcess()
{
    const Neighborhood neighborhood = neighborhoodOf(this->template value<typename Part::InNeighborhood>());
    image::BaseImage& out = *this->template value<attr::OutImg>();
    if (!spreadsByStrips() || !spreadAcrossStrips(out, neighborhood, *m_strips))
        spreadExtrema(out, neighborhood, this->template value<attr::InLocalExtremumType>());
    return processor::eSRT_Done;
}

template<class D, class Part>
void IterativePropagationLvl2<D, Part>::clearIntermediateData() noexcept
{
    m_strips->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
