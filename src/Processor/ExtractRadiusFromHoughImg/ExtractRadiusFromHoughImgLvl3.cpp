#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl3.h"

#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgKernel.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_DEFINE_ALGORITHM(ExtractRadiusFromHoughImgLvl3)

}}}  // namespace orvik::imaproc::fd
