#define ORVIK_UNIT_SSE2
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgKernel.h"
