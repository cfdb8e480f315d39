#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenAvx2.h"
#include "IterativeExtremumPropagation2dImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::advmorpho::IterativeExtremumPropagation2dImgLvl3, UInt8KernelTypes, orvik::core::eIS_Avx2)
