#pragma once

#include "siblings/AdvancedMorphology/Processor/LabelPropagation.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: each labelled sample of a plane takes the largest value (or the smallest, for minima) of its label; what has
/// no label becomes 0. All values are looked at before one is written: input and result may be one image.
/// Labels above InNbLabels fail the run.
class ORVIK_API LabelExtremumPropagation2dImgLutBuildPassLvl2
    : public LabelLutPassLvl2<LabelExtremumPropagation2dImgLutBuildPassLvl2, OfPlanes>
{
    ORVIK_PROCESSOR(LabelExtremumPropagation2dImgLutBuildPassLvl2, 5)
};

}}}  // namespace orvik::imaproc::advmorpho
