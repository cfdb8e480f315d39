#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "BasicThresholdImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace util {

ORVIK_REGISTER_PROCESSOR(BasicThresholdImgLvl3)
ORVIK_REGISTER_KERNELS(BasicThresholdImgLvl3, AllKernelTypes, core::eIS_Generic)

BasicThresholdImgLvl3::BasicThresholdImgLvl3() = default;
BasicThresholdImgLvl3::~BasicThresholdImgLvl3() = default;

}}}  // namespace orvik::imaproc::util
