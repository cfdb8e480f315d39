#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/PartsOfImages.h"

#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2 of planes and of volumes: the mask of what is not 0.
template<class D, class Part>
class LabelThresholdPassLvl2
    : public processor::Processor<D, processor::BaseAsync1Processor, typename Part::InSubImg, attr::OutBinImg>
{
protected:
    processor::RulePtr createRule() const;
};

/// Level 2 of planes and of volumes: extrema of labels.
template<class D, class Part>
class LabelLutPassLvl2
    : public processor::Processor<D, processor::BaseSyncProcessor, typename Part::InSubImg, typename Part::InSubLabelImg,
                                  attr::InLocalExtremumType, attr::InNbLabels, attr::OutImg>
{
protected:
    BoolResult runDerived() override;
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::advmorpho
