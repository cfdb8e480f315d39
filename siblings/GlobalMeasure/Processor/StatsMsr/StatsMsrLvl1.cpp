#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsrLvl1.h"

#include "siblings/GlobalMeasure/Processor/StatsMsr/ImageStats.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(StatsMsrLvl1)

BoolResult StatsMsrLvl1::runDerived()
{
    measureStats(*value<InImg>(), *value<OutStatsResult>());
    return success();
}

}}}  // namespace orvik::imaproc::glbmsr
