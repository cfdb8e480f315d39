#define ORVIK_UNIT_AVX2
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgKernel.h"
