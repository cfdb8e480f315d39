#define ORVIK_UNIT_AVX512
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgKernel.h"
