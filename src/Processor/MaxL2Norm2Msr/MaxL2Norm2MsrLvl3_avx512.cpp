#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenAvx512.h"
#include "MaxL2Norm2MsrKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::fd::MaxL2Norm2MsrLvl3, AllKernelTypes, orvik::core::eIS_Avx512)
