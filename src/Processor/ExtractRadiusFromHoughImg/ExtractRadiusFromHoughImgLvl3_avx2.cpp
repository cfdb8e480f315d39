#define ORVIK_UNIT_AVX2
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgKernel.h"
