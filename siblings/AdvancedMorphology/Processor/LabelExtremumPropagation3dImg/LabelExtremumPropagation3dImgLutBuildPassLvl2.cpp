#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgLutBuildPassLvl2.h"

#include "siblings/AdvancedMorphology/Processor/LabelPropagationStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation3dImgLutBuildPassLvl2)

}}}  // namespace orvik::imaproc::advmorpho
