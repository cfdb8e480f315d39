#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace util {

ORVIK_DEFINE_ALGORITHM(BasicThresholdImgLvl3)

}}}  // namespace orvik::imaproc::util
