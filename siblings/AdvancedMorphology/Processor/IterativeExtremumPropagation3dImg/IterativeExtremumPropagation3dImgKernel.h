#pragma once

// Spreads within one strip of slices of a volume. Compiled once per instruction set.

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl3.h"
#include "siblings/AdvancedMorphology/Processor/StripSpreadKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

template<class Sample, core::eInstructionSet Set>
BoolResult IterativeExtremumPropagation3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo&)
{
    const unsigned char largest = spreadInStrip<attr::eN3D_TwentySix>(linesOf(*value<attr::OutZStrip3d>()));
    value<attr::OutStatsResult>()->template set<attr::StatsResult::Max>(largest);
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_REGISTER_KERNELS(IterativeExtremumPropagation3dImgLvl3, UInt8KernelTypes)

}}}  // namespace orvik::imaproc::advmorpho
