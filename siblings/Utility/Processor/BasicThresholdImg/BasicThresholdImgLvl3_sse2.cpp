#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenSse2.h"
#include "BasicThresholdImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::util::BasicThresholdImgLvl3, AllKernelTypes, orvik::core::eIS_Sse2)
