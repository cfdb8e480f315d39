#define ORVIK_UNIT_SSE2
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgKernel.h"
