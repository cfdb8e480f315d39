#pragma once

// Spreads within one strip of lines of a plane. Compiled once per instruction set.

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"
#include "siblings/AdvancedMorphology/Processor/StripSpreadKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

template<class Sample, core::eInstructionSet Set>
BoolResult IterativeExtremumPropagation2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo&)
{
    const unsigned char largest = spreadInStrip<attr::eN2D_Eight>(linesOf(*value<attr::OutYStrip2d>()));
    value<attr::OutStatsResult>()->template set<attr::StatsResult::Max>(largest);
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_REGISTER_KERNELS(IterativeExtremumPropagation2dImgLvl3, UInt8KernelTypes)

}}}  // namespace orvik::imaproc::advmorpho
