#pragma once

// The bodies of LabelThresholdPassLvl2 and LabelLutPassLvl2, included by the units of the classes that derive from them.

#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"
#include "siblings/AdvancedMorphology/Processor/LabelPropagation.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

template<class D, class Part>
processor::RulePtr LabelThresholdPassLvl2<D, Part>::createRule() const
{
    return matchSize(this->template attribute<typename Part::InSubImg>(), this->template attribute<attr::OutBinImg>())
           && imagesApart(*this, mayBeSame<typename Part::InSubImg, attr::OutBinImg>);
}

template<class D, class Part>
processor::RulePtr LabelLutPassLvl2<D, Part>::createRule() const
{
    typedef typename Part::InSubImg InSubImg;
    typedef typename Part::InSubLabelImg InSubLabelImg;
    return matchSize(this->template attribute<InSubImg>(), this->template attribute<InSubLabelImg>())
           && matchSize(this->template attribute<InSubImg>(), this->template attribute<attr::OutImg>())
           && imagesApart(*this, mayBeSame<InSubImg, attr::OutImg>, mayBeSame<InSubLabelImg, attr::OutImg>);
}

template<class D, class Part>
BoolResult LabelLutPassLvl2<D, Part>::runDerived()
{
    return spreadExtremaOfLabels(*this->template value<typename Part::InSubImg>(),
                                 *this->template value<typename Part::InSubLabelImg>(),
                                 this->template value<attr::InNbLabels>(), this->template value<attr::InLocalExtremumType>(),
                                 *this->template value<attr::OutImg>());
}

}}}  // namespace orvik::imaproc::advmorpho
