#define ORVIK_UNIT_AVX2
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgKernel.h"
