#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsrLvl2.h"

#include "siblings/GlobalMeasure/Processor/StatsMsr/ImageStats.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(StatsMsrLvl2)

BoolResult StatsMsrLvl2::runDerived()
{
    return measureStatsOfPlane(*value<InSubImg2d>(), InSubImg2d::getObjectNameStr(), *value<OutStatsResult>());
}

}}}  // namespace orvik::imaproc::glbmsr
