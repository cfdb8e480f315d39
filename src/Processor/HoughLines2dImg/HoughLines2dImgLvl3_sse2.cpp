#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"

#include "HoughLinesRowsMutexColl.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenSse2.h"
#include "HoughLines2dImgKernel.h"
#include "frame/simd/CloseSet.h"

ORVIK_REGISTER_KERNELS(orvik::imaproc::fd::HoughLines2dImgLvl3, AllKernelTypes, orvik::core::eIS_Sse2)
