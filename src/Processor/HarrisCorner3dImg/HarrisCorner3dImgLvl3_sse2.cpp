#define ORVIK_UNIT_SSE2
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"
