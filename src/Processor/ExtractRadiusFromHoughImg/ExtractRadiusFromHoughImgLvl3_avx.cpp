#define ORVIK_UNIT_AVX
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgKernel.h"
