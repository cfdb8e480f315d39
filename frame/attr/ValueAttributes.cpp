#include "frame/attr/ValueAttributes.h"

#include "frame/processor/ValueArchiving.h"

namespace orvik { namespace processor {

ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eCircleIntensityType)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eHoughCircles2dAlgoMethod)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eLocalExtremumType)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eNeighborhood2d)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eNeighborhood3d)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eProcessingOptimizationPolicy)

}}  // namespace orvik::processor
