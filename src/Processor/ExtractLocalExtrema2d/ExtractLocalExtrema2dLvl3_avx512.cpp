#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenAvx512.h"
#include "ExtractLocalExtrema2dKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::fd::ExtractLocalExtrema2dLvl3, AllKernelTypes, orvik::core::eIS_Avx512)
