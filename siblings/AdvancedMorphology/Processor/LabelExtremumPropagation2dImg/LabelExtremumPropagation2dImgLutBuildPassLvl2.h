#pragma once

#include "siblings/AdvancedMorphology/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: each labelled pixel of a plane takes the largest value (or the smallest, for minima) of its label; what has
/// no label becomes 0. All values are looked at before one is written: input and result may be one image.
/// Labels above InNbLabels fail the run.
class ORVIK_API LabelExtremumPropagation2dImgLutBuildPassLvl2
    : public processor::Processor<LabelExtremumPropagation2dImgLutBuildPassLvl2, processor::BaseSyncProcessor,
                                  attr::InSubImg2d, attr::InSubLabelImg2d, attr::InLocalExtremumType, attr::InNbLabels,
                                  attr::OutImg>
{
    ORVIK_PROCESSOR(LabelExtremumPropagation2dImgLutBuildPassLvl2, 5)

protected:
    BoolResult runDerived() override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::advmorpho
