#define ORVIK_UNIT_AVX
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgKernel.h"
