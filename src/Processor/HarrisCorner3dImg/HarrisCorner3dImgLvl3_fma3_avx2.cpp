#define ORVIK_UNIT_FMA3_AVX2
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"
