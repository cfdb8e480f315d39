#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponentStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(ConnectedComponent2dImgLvl2)

}}}  // namespace orvik::imaproc::advmorpho
