#define ORVIK_UNIT_SSE2
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgKernel.h"
