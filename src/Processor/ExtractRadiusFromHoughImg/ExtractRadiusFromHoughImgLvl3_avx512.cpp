#define ORVIK_UNIT_AVX512
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgKernel.h"
