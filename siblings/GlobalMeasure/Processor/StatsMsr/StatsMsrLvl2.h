#pragma once

#include "siblings/GlobalMeasure/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Level 2: what StatsMsr2dLvl2 measures, under the name that detectors of circles know it by.
class ORVIK_API StatsMsrLvl2
    : public processor::Processor<StatsMsrLvl2, processor::BaseSyncProcessor, attr::InSubImg2d, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(StatsMsrLvl2, 0)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::glbmsr
