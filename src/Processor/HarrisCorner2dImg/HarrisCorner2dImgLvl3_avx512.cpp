#define ORVIK_UNIT_AVX512
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgKernel.h"
