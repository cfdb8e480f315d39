#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl3.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_ALGORITHM(IterativeExtremumPropagation3dImgLvl3)

}}}  // namespace orvik::imaproc::advmorpho
