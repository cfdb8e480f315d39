#define ORVIK_UNIT_AVX
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"
