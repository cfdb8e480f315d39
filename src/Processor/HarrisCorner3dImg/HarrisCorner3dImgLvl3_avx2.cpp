#define ORVIK_UNIT_AVX2
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"
