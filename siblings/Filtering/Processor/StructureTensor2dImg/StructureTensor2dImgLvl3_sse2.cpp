#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenSse2.h"
#include "StructureTensor2dImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::filter::StructureTensor2dImgLvl3, AllKernelTypes, orvik::core::eIS_Sse2)
