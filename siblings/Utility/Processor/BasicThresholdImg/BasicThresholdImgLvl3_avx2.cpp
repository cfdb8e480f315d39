#define ORVIK_UNIT_AVX2
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgKernel.h"
