#pragma once

#include "siblings/GlobalMeasure/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Level 1: what StatsMsr2dLvl2 measures, of all samples of an image of any sizes, such as a volume.
class ORVIK_API StatsMsrLvl1
    : public processor::Processor<StatsMsrLvl1, processor::BaseSyncProcessor, attr::InImg, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(StatsMsrLvl1, 0)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::glbmsr
