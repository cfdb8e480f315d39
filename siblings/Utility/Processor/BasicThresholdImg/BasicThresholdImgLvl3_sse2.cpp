#define ORVIK_UNIT_SSE2
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgKernel.h"
