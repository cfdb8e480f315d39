#define ORVIK_UNIT_AVX
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgKernel.h"
