#define ORVIK_UNIT_AVX512
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"
