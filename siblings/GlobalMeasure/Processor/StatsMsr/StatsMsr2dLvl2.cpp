#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsr2dLvl2.h"

#include "siblings/GlobalMeasure/ImageSamples.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/ImageStats.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(StatsMsr2dLvl2)

BoolResult StatsMsr2dLvl2::runDerived()
{
    const image::BaseImage& plane = *value<InSubImg2d>();
    const BoolResult result = checkOnePlane(plane, InSubImg2d::getObjectNameStr());
    if (result)
        measureStats(plane, *value<OutStatsResult>());
    return result;
}

}}}  // namespace orvik::imaproc::glbmsr
