#define ORVIK_UNIT_AVX512
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgKernel.h"
