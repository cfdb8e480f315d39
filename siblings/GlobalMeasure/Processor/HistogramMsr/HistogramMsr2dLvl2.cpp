#include "siblings/GlobalMeasure/Processor/HistogramMsr/HistogramMsr2dLvl2.h"

#include "siblings/GlobalMeasure/ImageSamples.h"
#include "siblings/GlobalMeasure/Processor/HistogramMsr/ImageHistogram.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HistogramMsr2dLvl2)

BoolResult HistogramMsr2dLvl2::runDerived()
{
    const image::BaseImage& plane = *value<InSubImg2d>();
    const BoolResult result = checkOnePlane(plane, InSubImg2d::getObjectNameStr());
    if (result)
        measureHistogram(plane, *value<OutHistogramResult>());
    return result;
}

}}}  // namespace orvik::imaproc::glbmsr
