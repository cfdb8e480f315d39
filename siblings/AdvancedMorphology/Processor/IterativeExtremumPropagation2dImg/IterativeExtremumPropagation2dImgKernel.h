// Spreads within one strip of lines of a plane. Compiled once per instruction set.

#include "frame/simd/Simd.h"
#include "siblings/AdvancedMorphology/Processor/StripSpreadKernel.h"

namespace orvik { namespace imaproc { namespace advmorpho {

template<class Sample, core::eInstructionSet Set>
BoolResult IterativeExtremumPropagation2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo&)
{
    const unsigned char largest = spreadInStrip<attr::eN2D_Eight>(linesOf(*value<attr::OutYStrip2d>()));
    value<attr::OutStatsResult>()->template set<attr::StatsResult::Max>(largest);
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho
