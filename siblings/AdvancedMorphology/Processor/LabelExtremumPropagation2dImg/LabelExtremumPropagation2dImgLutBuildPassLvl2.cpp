#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"

#include "siblings/AdvancedMorphology/Processor/LabelPropagationStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation2dImgLutBuildPassLvl2)

}}}  // namespace orvik::imaproc::advmorpho
