#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenAvx512.h"
#include "HarrisCorner2dImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::fd::HarrisCorner2dImgLvl3, AllKernelTypes, orvik::core::eIS_Avx512)
