#pragma once

#include "siblings/GlobalMeasure/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Level 2: number, sum, mean, standard deviation and extremes of the samples of one plane of any type, in its unit.
///
/// NaN is skipped and not counted; a plane of nothing else gives 0 for all. StdDev = sqrt(sum of (v - Mean)^2 / NbSamples):
/// that of these samples, no estimate for a population they were drawn from. Min and Max are exact; Sum is while no
/// partial sum needs more than 53 bits, and StdDev is 0 then where all samples are equal. Infinite samples count: Sum and
/// Mean are then infinite or NaN, StdDev is NaN. An image of more than one plane fails the run.
/// Cost: two reads per sample, by one thread, in an order that depends on the width alone: the same bits on any machine.
class ORVIK_API StatsMsr2dLvl2
    : public processor::Processor<StatsMsr2dLvl2, processor::BaseSyncProcessor, attr::InSubImg2d, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(StatsMsr2dLvl2, 0)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::glbmsr
