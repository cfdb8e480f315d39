#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ConnectedComponent2dImgLvl2)

BoolResult ConnectedComponent2dImgLvl2::runDerived()
{
    value<OutPlaneComponents>()->runs.find(*value<InSubImg2d>(), neighborhoodOf(value<InNeighborhood2d>()));
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho
