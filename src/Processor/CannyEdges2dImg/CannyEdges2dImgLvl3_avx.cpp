#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenAvx.h"
#include "CannyEdges2dImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::fd::CannyEdges2dImgLvl3, Real32KernelTypes, orvik::core::eIS_Avx)
