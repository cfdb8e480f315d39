#include "siblings/AdvancedMorphology/Processor/ConnectedComponent3dImg/ConnectedComponent3dImgLvl2.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponentStages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_PROCESSOR(ConnectedComponent3dImgLvl2)

}}}  // namespace orvik::imaproc::advmorpho
